#include "QBLCore/FileManagement/QBLFmDirectory.hpp"

#include "QBLCore/FileManagement/internal/QBLFmReadDir.hpp"
#include "QBLCore/FileManagement/internal/QBLFmResolve.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

namespace {

constexpr int kOpenFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

}  // namespace

bool QBLFmDirectory::take(int descriptor) {
    if (descriptor < 0) return false;
    close();
    m_iDescriptor = descriptor;
    return true;
}

bool QBLFmDirectory::open(const char* path) {
    return path != nullptr ? take(open64(path, kOpenFlags)) : qblSetErrno(EFAULT);
}

bool QBLFmDirectory::open(const QBLFmDirectory& parent, const char* name) {
    return qblIsEntryName(name) &&
           take(openat64(parent.m_iDescriptor, name, kOpenFlags | O_NOFOLLOW));
}

bool QBLFmDirectory::create(const QBLFmDirectory& parent, const char* name, unsigned mode) {
    if (!qblIsEntryName(name)) return false;
    if (mkdirat(parent.m_iDescriptor, name, mode) != 0 && errno != EEXIST) return false;
    return open(parent, name);
}

bool QBLFmDirectory::openParent(const char* path, std::string& name) {
    if (path == nullptr || *path == '\0') return qblSetErrno(path != nullptr ? ENOENT : EFAULT);
    return qblSettle([&] { return take(qblOpenParent(path, name)); });
}

void QBLFmDirectory::close() {
    if (m_iDescriptor >= 0) qblCloseQuietly(m_iDescriptor);
    m_iDescriptor = -1;
}

int QBLFmDirectory::openFile(const char* name, int flags, unsigned mode) const {
    if (!qblIsEntryName(name)) return -1;
    return openat64(m_iDescriptor, name, flags | O_NOFOLLOW | O_CLOEXEC, mode);
}

bool QBLFmDirectory::readDir(std::list<std::string>* files, const char* filePattern,
                             std::list<std::string>* dirs, const char* dirPattern) const {
    return qblReadDir(openat64(m_iDescriptor, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC), files,
                      filePattern, dirs, dirPattern);
}

bool QBLFmDirectory::rename(const char* from, const char* to) const {
    return qblIsEntryName(from) && qblIsEntryName(to) &&
           renameat(m_iDescriptor, from, m_iDescriptor, to) == 0;
}

bool QBLFmDirectory::remove(const char* name) const {
    return qblIsEntryName(name) && unlinkat(m_iDescriptor, name, 0) == 0;
}
