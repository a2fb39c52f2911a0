#include "tools/qblconv/Input.hpp"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <tuple>

#include "QBLCore/FileLock/M_LockFile.hpp"
#include "tools/qblconv/Interrupt.hpp"

namespace conv {

namespace {

constexpr int kAttempts = 100;
constexpr int kLongestPause = 50;  // milliseconds between two attempts to lock

// Without the time of the last change of these: a second name that the file gets changes that, too.
auto version(const struct stat64& s) {
    return std::make_tuple(s.st_dev, s.st_ino, s.st_size, s.st_mtim.tv_sec, s.st_mtim.tv_nsec,
                           s.st_mode, s.st_uid, s.st_gid);
}

}  // namespace

bool isSameVersion(const struct stat64& a, const struct stat64& b) {
    return version(a) == version(b);
}

bool Input::failed(int error) {
    m_error = error;
    return false;
}

bool Input::open(const std::string& path, Origin origin, bool forWriting) {
    m_path = path;
    m_origin = origin;
    m_forWriting = forWriting;
    return openFile();
}

bool Input::openFile() {
    m_isAtEnd = m_isPassedOver = false;
    m_isEmpty = true;
    m_error = 0;
    const bool isStandard = m_path == "-";
    // Nor is the writer of a pipe waited for where no interrupt would end that.
    int flags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    if (m_origin == Origin::kFoundInPlace) flags |= O_NOFOLLOW;
    const bool isOpen =
        isStandard ? m_file.open(QBLFmFile64::standardinput)
                   : m_file.open(m_path.c_str(), static_cast<QBLFmFile64::createmode>(flags),
                                 m_forWriting ? 0 : 1);
    if (!isOpen) {
        const int error = m_file.getLastErrorNumber();
        // A link, or a socket or device without anything behind it.
        m_isPassedOver =
            (m_origin == Origin::kFoundInPlace && error == ELOOP) || (isFound() && error == ENXIO);
        return failed(error);
    }
    if (fstat64(descriptor(), &m_status) != 0) return failed(errno);
    if (S_ISDIR(m_status.st_mode)) return failed(EISDIR);
    m_isPassedOver = isFound() && !isRegular();
    return !m_isPassedOver;
}

/// @return an errno; 0 when it is locked
int Input::lockFile(Options::Lock how, bool exclusive) {
    for (int pause = 1;; pause = std::min(2 * pause, kLongestPause)) {
        if (M_LockFile(m_file.getFileDescriptor(), exclusive ? 0 : 1, 0) != 0) return 0;
        const int error = errno;
        const bool isInTheWay = error == EACCES || error == EAGAIN;
        if (how != Options::Lock::kWait || !isInTheWay || isInterrupted()) return error;
        pauseFor(pause);
    }
}

bool Input::lock(Options::Lock how, bool exclusive, Problem& problem) {
    if (how == Options::Lock::kNone || !isRegular()) return true;
    for (int i = 0; i < kAttempts; ++i) {
        const int error = lockFile(how, exclusive);
        if (error != 0) {
            problem = error == EACCES || error == EAGAIN
                          ? Problem{CONV_LOCKED, {m_path}}
                          : Problem{CONV_CANNOT_LOCK, {m_path, std::strerror(error)}};
            return false;
        }
        struct stat64 now = {};
        const bool isThere = stat64(m_path.c_str(), &now) == 0;
        // Read again: whoever had it may have written to it.
        if (isThere && isSame(now)) return fstat64(descriptor(), &m_status) == 0;
        if (isThere && openFile()) continue;
        problem = {CONV_CANNOT_READ, {m_path, std::strerror(isThere ? m_error : ENOENT)}};
        return false;
    }
    problem = {CONV_LOCKED, {m_path}};
    return false;
}

int Input::read(char* block, unsigned size) {
    unsigned done = 0;
    while (done < size && !m_isAtEnd) {
        const bool isReady = isRegular() || waitToRead(descriptor());
        const int got = isReady ? m_file.read(block + done, size - done) : -1;
        const int error = isReady ? m_file.getLastErrorNumber() : EINTR;
        if (got < 0 && (error == EINTR || error == EAGAIN) && !isInterrupted()) continue;
        if (got < 0) {
            m_error = error;
            return -1;
        }
        m_isEmpty = m_isEmpty && got == 0;
        done += static_cast<unsigned>(got);
        // What others write is passed on as it comes.
        if (got > 0 && !isRegular()) break;
        // One call less for each small file; those of no size are the system's own.
        m_isAtEnd = got == 0 || (isRegular() && m_status.st_size > 0 && done < size);
    }
    return static_cast<int>(done);
}

int Input::descriptor() const { return m_path == "-" ? 0 : m_file.getFileDescriptor(); }

bool Input::rewind() {
    m_isAtEnd = false;
    return m_file.seek(0, QBLFmFile64::begin) == 0 || failed(m_file.getLastErrorNumber());
}

bool Input::hasChanged() {
    struct stat64 now = {};
    return stat64(m_path.c_str(), &now) != 0 || !isSameVersion(now, m_status);
}

bool Input::isSame(const struct stat64& other) const {
    return m_status.st_dev == other.st_dev && m_status.st_ino == other.st_ino;
}

void Input::close() { m_file.close(); }

}  // namespace conv
