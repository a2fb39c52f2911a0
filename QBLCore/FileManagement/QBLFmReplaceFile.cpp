#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"

#include <stdio.h>

#include <atomic>
#include <cstring>

#include "QBLCore/FileManagement/QBLFmDirectory.hpp"
#include "QBLCore/FileManagement/internal/QBLFmAttributes.hpp"
#include "QBLCore/FileManagement/internal/QBLFmResolve.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

namespace {

constexpr int kAttempts = 500;
constexpr unsigned short kModeOfANewFile = 0xFFFF;  // keeps the mode that open(2) set
std::atomic<unsigned> g_counter{0};

/// Returns a name that no other unfinished version has. A file that remained after a crash may have
/// this name.
std::string temporaryName() {
    return ".QBLFm" + std::to_string(getpid()) + "." + std::to_string(++g_counter);
}

struct Descriptor {
    explicit Descriptor(int opened) : fd(opened) {}
    ~Descriptor() {
        if (fd >= 0) qblCloseQuietly(fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int fd;
};

void release(int& fd) {
    if (fd >= 0) qblCloseQuietly(fd);
    fd = -1;
}

}  // namespace

QBLFmReplaceFile::QBLFmReplaceFile()
    : m_iDirectory(-1),
      m_iFile(-1),
      m_iLastError(0),
      m_bBroken(false),
      m_bCommitted(false),
      m_message(),
      m_uMode(kModeOfANewFile) {}

QBLFmReplaceFile::~QBLFmReplaceFile() { discard(); }

bool QBLFmReplaceFile::failed(int error) {
    m_iLastError = error;
    return false;
}

bool QBLFmReplaceFile::isOpen() const { return m_iFile >= 0; }

bool QBLFmReplaceFile::isCommitted() const { return m_bCommitted; }

int QBLFmReplaceFile::getLastErrorNumber() const { return m_iLastError; }

const char* QBLFmReplaceFile::getLastErrorMessage() {
    return strerror_r(m_iLastError, m_message, sizeof m_message);
}

template <class Locate>
bool QBLFmReplaceFile::begin(Locate&& locate) {
    discard();
    m_iLastError = 0;
    m_bBroken = m_bCommitted = false;
    if (qblSettle([&] { return locate() && create(); })) return true;
    failed(errno);
    discard();
    return false;
}

bool QBLFmReplaceFile::open(const char* path) {
    return begin([this, path] {
        if (path == nullptr || *path == '\0') return qblSetErrno(path != nullptr ? ENOENT : EFAULT);
        return locate(path);
    });
}

bool QBLFmReplaceFile::open(const QBLFmDirectory& directory, const char* name) {
    return begin([&] {
        if (!qblIsEntryName(name)) return false;
        m_name = name;
        m_iDirectory = fcntl(directory.getDescriptor(), F_DUPFD_CLOEXEC, 3);
        return m_iDirectory >= 0;
    });
}

// Keeps the directory open: the process may change its working directory before the commit.
bool QBLFmReplaceFile::locate(const char* path) {
    m_iDirectory = qblOpenParent(path, m_name);
    return m_iDirectory >= 0;
}

bool QBLFmReplaceFile::create() {
    // Type, mode, owner and attributes come from one open file, even if another file takes its
    // name. The file is opened with O_PATH, because closing any other descriptor would release the
    // locks that the process has on the file.
    const Descriptor from(openat64(m_iDirectory, m_name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    const bool replaces = from.fd >= 0;
    if (!replaces && errno != ENOENT) return false;
    QBLFileStatus old;
    if (replaces && !old.get(from.fd)) return false;
    if (replaces && !old.isRegular()) return qblSetErrno(old.isDirectory() ? EISDIR : EINVAL);
    if (replaces && faccessat(m_iDirectory, m_name.c_str(), W_OK, AT_EACCESS) != 0) return false;
    for (int i = 0; i < kAttempts && m_iFile < 0; ++i) {
        m_temporary = temporaryName();
        // If the new file will get the access rights of an old version, only its owner may read it
        // until then.
        m_iFile = openat64(m_iDirectory, m_temporary.c_str(),
                           O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, replaces ? 0600 : 0666);
        if (m_iFile < 0) m_temporary.clear();
        if (m_iFile < 0 && errno != EEXIST) return false;
    }
    m_uMode = kModeOfANewFile;
    if (m_iFile < 0 || !replaces) return m_iFile >= 0;
    QBLFileStatus status;
    if (!keepOwnerAndMode(old.mode(), old.user(), old.group()) || !status.get(m_iFile))
        return false;
    unsigned mode = m_uMode;
    if (!qblCopyAttributes(from.fd, m_iFile, mode, status.group() != old.group())) return false;
    m_uMode = static_cast<unsigned short>(mode);
    return fchmod(m_iFile, 0600) == 0;
}

// Does not set the mode yet: commit() sets it, because a write clears the set-id bits.
bool QBLFmReplaceFile::keepOwnerAndMode(unsigned mode, unsigned user, unsigned group) {
    QBLFileStatus status;
    if (!status.get(m_iFile)) return false;
    if (status.user() != user || status.group() != group) {
        if (fchown(m_iFile, user, group) != 0 &&
            fchown(m_iFile, static_cast<uid_t>(-1), group) != 0)
            errno = 0;  // the caller may lack the right; the result is checked below
        if (!status.get(m_iFile)) return false;
    }
    mode &= 07777;
    if (status.user() != user) mode &= ~static_cast<unsigned>(S_ISUID);
    if (status.group() != group) mode &= ~static_cast<unsigned>(S_ISGID);
    m_uMode = static_cast<unsigned short>(mode);
    return true;
}

bool QBLFmReplaceFile::write(const void* data, unsigned long size) {
    if (!isOpen()) return failed(EBADF);
    const char* next = static_cast<const char*>(data);
    while (size != 0) {
        const ssize_t put = ::write(m_iFile, next, size < 0x40000000 ? size : 0x40000000);
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) {
            m_bBroken = true;
            return failed(errno);
        }
        next += put;
        size -= static_cast<unsigned long>(put);
    }
    return true;
}

/// Sets the mode of the version and writes the version to the disk.
bool QBLFmReplaceFile::settle() {
    if (m_bBroken) return qblSetErrno(m_iLastError);
    if (m_uMode != kModeOfANewFile && fchmod(m_iFile, m_uMode) != 0) return false;
    return fsync(m_iFile) == 0;
}

bool QBLFmReplaceFile::flush() {
    if (!isOpen()) return failed(EBADF);
    return settle() || failed(errno);
}

/// Commits the version.
/// @param rename  gives the version the file's name. Stores in m_temporary the name of the file to
///     remove.
bool QBLFmReplaceFile::put(bool (QBLFmReplaceFile::*rename)(int), int old) {
    if (!isOpen()) return failed(EBADF);
    if (!settle()) return failed(errno);
    // A directory that cannot be opened for reading cannot be synchronised, but its file system
    // can. Gets the descriptor before the rename, because after the rename a failure could no
    // longer keep the old version.
    const Descriptor dir(openat64(m_iDirectory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const Descriptor kept(dir.fd < 0 ? fcntl(m_iFile, F_DUPFD_CLOEXEC, 3) : -1);
    if (dir.fd < 0 && kept.fd < 0) return failed(errno);
    bool done = qblClose(m_iFile) == 0;
    m_iFile = -1;
    if (done) done = qblSettle([&] { return (this->*rename)(old); });
    if (done) {
        m_bCommitted = true;
        done = (dir.fd >= 0 ? fsync(dir.fd) : syncfs(kept.fd)) == 0;
    }
    if (!done) failed(errno);
    return done;
}

bool QBLFmReplaceFile::renameNew(int) {
    if (renameat(m_iDirectory, m_temporary.c_str(), m_iDirectory, m_name.c_str()) != 0)
        return false;
    m_temporary.clear();
    return true;
}

bool QBLFmReplaceFile::commit() {
    const bool done = put(&QBLFmReplaceFile::renameNew, -1);
    discard();
    return done;
}

bool QBLFmReplaceFile::hasName(const char* name, int file) {
    QBLFileStatus named, opened;
    return named.get(m_iDirectory, name, AT_SYMLINK_NOFOLLOW) && opened.get(file) &&
           (named.isSameFile(opened) || qblSetErrno(ESTALE));
}

bool QBLFmReplaceFile::exchange(int old) {
    if (!hasName(m_name.c_str(), old)) return false;
    const auto swap = [this] {
        return renameat2(m_iDirectory, m_temporary.c_str(), m_iDirectory, m_name.c_str(),
                         RENAME_EXCHANGE) == 0;
    };
    if (!swap()) {
        const bool isUnknown = errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP;
        return isUnknown && linkAndRename(old);
    }
    if (hasName(m_temporary.c_str(), old)) return true;
    // Another file took the name between the two calls. That file gets its name back and is not
    // removed.
    const QBLKeepErrno keepErrno;
    if (!swap()) m_temporary.clear();
    return false;
}

/// Does the work of exchange() on file systems that cannot exchange names. Another file that takes
/// the name between the last check and the rename is lost.
bool QBLFmReplaceFile::linkAndRename(int old) {
    const std::string second = temporaryName();
    const bool isLinked =
        linkat(m_iDirectory, m_name.c_str(), m_iDirectory, second.c_str(), 0) == 0;
    const bool done = hasName(isLinked ? second.c_str() : m_name.c_str(), old) && renameNew(-1);
    if (done && isLinked)
        m_temporary = second;
    else if (isLinked)
        unlinkat(m_iDirectory, second.c_str(), 0);
    return done;
}

bool QBLFmReplaceFile::commitOver(int old) {
    const bool done = put(&QBLFmReplaceFile::exchange, old);
    if (!m_bCommitted) discard();
    return done;
}

bool QBLFmReplaceFile::keepReplaced(const char* name) {
    if (!m_bCommitted || m_temporary.empty()) return failed(ENOENT);
    if (!qblIsEntryName(name)) return failed(errno);
    if (renameat2(m_iDirectory, m_temporary.c_str(), m_iDirectory, name, RENAME_NOREPLACE) != 0) {
        const bool isUnknown = errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP;
        if (!isUnknown) return failed(errno);
        if (linkat(m_iDirectory, m_temporary.c_str(), m_iDirectory, name, 0) != 0)
            return failed(errno);
        unlinkat(m_iDirectory, m_temporary.c_str(), 0);
    }
    m_temporary.clear();
    return true;
}

void QBLFmReplaceFile::discard() {
    release(m_iFile);
    if (!m_temporary.empty()) unlinkat(m_iDirectory, m_temporary.c_str(), 0);
    m_temporary.clear();
    release(m_iDirectory);
}
