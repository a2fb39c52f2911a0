#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"

#include <atomic>
#include <cstring>
#include <new>

#include "QBLCore/FileManagement/internal/QBLFmAttributes.hpp"
#include "QBLCore/FileManagement/internal/QBLFmResolve.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

namespace {

constexpr int kAttempts = 500;
constexpr unsigned short kModeOfANewFile = 0xFFFF;  // what open(2) has given it
std::atomic<unsigned> g_counter{0};

/// A name that no other version being written has. One that a crash has left may have it.
std::string temporaryName() {
    return ".QBLFm" + std::to_string(getpid()) + "." + std::to_string(++g_counter);
}

struct Descriptor {
    explicit Descriptor(int opened = -1) : fd(opened) {}
    ~Descriptor() {
        if (fd >= 0) qblCloseQuietly(fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int fd;
};

/// Opens the old version for its attributes, in whatever way it may be.
int openOld(int directory, const char* name) {
    constexpr int kFlags = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int fd = openat64(directory, name, O_RDONLY | kFlags);
    return fd >= 0 || errno != EACCES ? fd : openat64(directory, name, O_WRONLY | kFlags);
}

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

bool QBLFmReplaceFile::open(const char* path) {
    discard();
    m_iLastError = 0;
    m_bBroken = m_bCommitted = false;
    try {
        if (path == nullptr || *path == '\0') return failed(path != nullptr ? ENOENT : EFAULT);
        if (locate(path) && create()) return true;
        failed(errno);
    } catch (const std::bad_alloc&) {
        failed(ENOMEM);
    } catch (const std::length_error&) {
        failed(ENAMETOOLONG);
    }
    const int error = m_iLastError;
    discard();
    return failed(error);
}

// Opens the directory and keeps it: the process may go to another one before it commits.
bool QBLFmReplaceFile::locate(const char* path) {
    m_iDirectory = qblOpenParent(path, m_name);
    return m_iDirectory >= 0;
}

bool QBLFmReplaceFile::create() {
    QBLFmStatus old;
    const bool replaces = old.get(m_iDirectory, m_name.c_str(), AT_SYMLINK_NOFOLLOW);
    if (!replaces && errno != ENOENT) return false;
    if (replaces && !old.isRegular()) return qblFail(old.isDirectory() ? EISDIR : EINVAL);
    if (replaces && faccessat(m_iDirectory, m_name.c_str(), W_OK, AT_EACCESS) != 0) return false;
    for (int i = 0; i < kAttempts && m_iFile < 0; ++i) {
        m_temporary = temporaryName();
        // Nobody else may look into one that has to have the access rights of another.
        m_iFile = openat64(m_iDirectory, m_temporary.c_str(),
                           O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, replaces ? 0600 : 0666);
        if (m_iFile < 0) m_temporary.clear();
        if (m_iFile < 0 && errno != EEXIST) return false;
    }
    m_uMode = kModeOfANewFile;
    return m_iFile >= 0 && (!replaces || keepOwnerAndMode(old.mode(), old.user(), old.group()));
}

// The mode itself comes with commit(): a write takes the set-id bits off.
bool QBLFmReplaceFile::keepOwnerAndMode(unsigned mode, unsigned user, unsigned group) {
    QBLFmStatus status;
    if (!status.get(m_iFile)) return false;
    if (status.user() != user || status.group() != group) {
        if (fchown(m_iFile, user, group) != 0 &&
            fchown(m_iFile, static_cast<uid_t>(-1), group) != 0)
            errno = 0;  // may not be allowed; what came of it is looked at
        if (!status.get(m_iFile)) return false;
    }
    mode &= 07777;
    const bool strangeGroup = status.group() != group;
    if (status.user() != user) mode &= ~static_cast<unsigned>(S_ISUID);
    if (strangeGroup) mode &= ~static_cast<unsigned>(S_ISGID);
    Descriptor old(openOld(m_iDirectory, m_name.c_str()));
    QBLFmStatus opened;
    if (old.fd < 0 || !opened.get(old.fd)) return false;
    if (!opened.isRegular()) return qblFail(ESTALE);  // another has taken its name meanwhile
    if (!qblCopyAttributes(old.fd, m_iFile, mode, strangeGroup)) return false;
    m_uMode = static_cast<unsigned short>(mode);
    return fchmod(m_iFile, 0600) == 0;
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

bool QBLFmReplaceFile::commit() {
    if (!isOpen()) return failed(EBADF);
    bool done = !m_bBroken;
    if (!done) errno = m_iLastError;
    if (done && m_uMode != kModeOfANewFile) done = fchmod(m_iFile, m_uMode) == 0;
    done = done && fsync(m_iFile) == 0;
    // A directory that may not be read cannot be synchronised, but its file system can.
    const Descriptor dir(openat64(m_iDirectory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const Descriptor kept(dir.fd < 0 ? fcntl(m_iFile, F_DUPFD_CLOEXEC, 3) : -1);
    if (done) {
        done = ::close(m_iFile) == 0;
        m_iFile = -1;
    }
    if (done) done = renameat(m_iDirectory, m_temporary.c_str(), m_iDirectory, m_name.c_str()) == 0;
    if (done) {
        m_bCommitted = true;
        m_temporary.clear();
        done = (dir.fd >= 0 ? fsync(dir.fd) : syncfs(kept.fd)) == 0;
    }
    if (!done) failed(errno);
    discard();
    return done;
}

void QBLFmReplaceFile::discard() {
    release(m_iFile);
    if (!m_temporary.empty()) unlinkat(m_iDirectory, m_temporary.c_str(), 0);
    m_temporary.clear();
    release(m_iDirectory);
}
