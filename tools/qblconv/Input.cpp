#include "tools/qblconv/Input.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "QBLCore/FileLock/M_LockFile.hpp"
#include "tools/common/Reason.hpp"
#include "tools/qblconv/Interrupt.hpp"
#include "tools/qblconv/Spool.hpp"

namespace conv {

namespace {

constexpr int kAttempts = 100;
constexpr int kLongestPause = 50;  // milliseconds between two attempts to lock

}  // namespace

bool Input::rememberError(int error) {
    m_iError = error;
    return false;
}

bool Input::open(const Item& item, bool forWriting) {
    m_item = item;
    m_bForWriting = forWriting;
    return openFile();
}

int Input::openByName(int flags) const {
    const bool hasPlace = m_item.place != nullptr;
    return hasPlace ? m_item.place->directory.openFile(m_item.leaf.c_str(), flags)
                    : open64(m_item.path.c_str(), flags | O_CLOEXEC);
}

bool Input::lookAtName(FileStatus& status) const {
    const bool hasPlace = m_item.place != nullptr;
    return hasPlace ? status.get(m_item.place->directory.getDescriptor(), m_item.leaf.c_str(),
                                 AT_SYMLINK_NOFOLLOW)
                    : status.get(m_item.path.c_str());
}

bool Input::openFile() {
    close();
    m_bAtEnd = false;
    m_bSpooled = false;
    m_iStart = 0;
    m_passedOver = PassedOver::kNot;
    m_bEmpty = true;
    m_iError = 0;
    const bool isFound = m_item.origin == Item::Origin::kFound;
    // O_NONBLOCK: does not wait for the writer of a pipe here, because no interrupt would end the
    // wait.
    m_iFile = m_item.path == "-" && !isFound
                  ? STDIN_FILENO
                  : openByName((m_bForWriting ? O_RDWR : O_RDONLY) | O_NOCTTY | O_NONBLOCK);
    if (m_iFile < 0) {
        const int error = errno;
        FileStatus target;
        if (isFound && error == ENXIO) m_passedOver = PassedOver::kNotRegular;
        if (isFound && error == ELOOP)
            m_passedOver =
                target.get(m_item.place->directory.getDescriptor(), m_item.leaf.c_str(), 0)
                    ? PassedOver::kLink
                    : PassedOver::kBrokenLink;
        return rememberError(error);
    }
    if (!m_status.get(m_iFile)) return rememberError(errno);
    if (m_status.isDirectory()) return rememberError(EISDIR);
    if (m_iFile == STDIN_FILENO && isRegular()) {
        m_iStart = lseek64(m_iFile, 0, SEEK_CUR);
        if (m_iStart < 0) return rememberError(errno);
    }
    if (isFound && !isRegular()) m_passedOver = PassedOver::kNotRegular;
    return m_passedOver == PassedOver::kNot;
}

/// @return an errno; 0 if the file is locked
int Input::lockFile(Options::Lock how, bool exclusive) {
    for (int pause = 1;; pause = std::min(2 * pause, kLongestPause)) {
        if (M_LockFile(m_iFile, exclusive ? 0 : 1, 0) != 0) return 0;
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
                          ? lockedBy(exclusive)
                          : tools::withShown(qblconvmsgs::convCannotLock, m_item.path,
                                             tools::reason(error));
            return false;
        }
        FileStatus now;
        const bool isThere = lookAtName(now);
        // Reads the status again: the last holder of the lock may have written to the file.
        if (isThere && now.isSameFile(m_status))
            return m_status.get(m_iFile) || rememberError(errno);
        if (isThere && openFile()) continue;
        problem = tools::withShown(qblconvmsgs::convCannotRead, m_item.path,
                                   tools::reason(isThere ? m_iError : ENOENT));
        return false;
    }
    problem = tools::withShown(qblconvmsgs::convLocked, m_item.path);
    return false;
}

/// Describes the lock of another process that blocks ours. Names the process if the system still
/// knows it.
Problem Input::lockedBy(bool exclusive) const {
    struct flock64 lock = {};
    lock.l_type = exclusive ? F_WRLCK : F_RDLCK;
    lock.l_whence = SEEK_SET;
    const bool isKnown = fcntl(m_iFile, F_GETLK64, &lock) == 0 && lock.l_type != F_UNLCK;
    if (!isKnown || lock.l_pid <= 0) return tools::withShown(qblconvmsgs::convLocked, m_item.path);
    return tools::withShown(qblconvmsgs::convLockedBy, m_item.path, std::to_string(lock.l_pid));
}

int Input::read(char* block, unsigned size) {
    unsigned done = 0;
    while (done < size && !m_bAtEnd) {
        const bool isReady = isFile() || waitToRead(m_iFile);
        const ssize_t got = isReady ? ::read(m_iFile, block + done, size - done) : -1;
        const int error = isReady ? errno : EINTR;
        if (got < 0 && (error == EINTR || error == EAGAIN) && !isInterrupted()) continue;
        if (got < 0) {
            m_iError = error;
            return -1;
        }
        m_bEmpty = m_bEmpty && got == 0;
        done += static_cast<unsigned>(got);
        // Returns data from pipes and terminals as soon as they arrive.
        if (got > 0 && !isFile()) break;
        // A short read means the end of a regular file; this saves a call for each small file. But
        // files of size 0, such as files in /proc, may have more data.
        m_bAtEnd = got == 0 || (isRegular() && m_status.size() > 0 && done < size);
    }
    return static_cast<int>(done);
}

bool Input::rewind() {
    m_bAtEnd = false;
    return lseek64(m_iFile, m_iStart, SEEK_SET) == m_iStart || rememberError(errno);
}

bool Input::spool(std::vector<char>& block, Problem& problem) {
    if (isFile()) return true;
    const auto cannotSpool = [&](int error) {
        problem = tools::withShown(qblconvmsgs::convCannotSpool, m_item.path, tools::reason(error));
        return false;
    };
    const int copy = openTemporary();
    if (copy < 0) return cannotSpool(errno);
    bool isCopied = true;
    int got = 0;
    while (isCopied && (got = read(block.data(), static_cast<unsigned>(block.size()))) > 0)
        isCopied = writeAll(copy, block.data(), static_cast<std::size_t>(got));
    const int error = errno;
    if (got < 0)
        problem =
            tools::withShown(qblconvmsgs::convCannotRead, m_item.path, tools::reason(m_iError));
    if (got >= 0 && isCopied) {
        close();
        m_iFile = copy;
        m_bSpooled = true;
        return rewind() || cannotSpool(m_iError);
    }
    ::close(copy);
    return isCopied ? false : cannotSpool(error);
}

bool Input::hasChanged() const {
    FileStatus now;
    return !now.get(m_iFile) || !now.isSameVersion(m_status);
}

bool Input::isAnother() const {
    FileStatus now;
    return !lookAtName(now) || !now.isSameVersion(m_status);
}

void Input::close() {
    if (m_iFile > STDIN_FILENO) ::close(m_iFile);
    m_iFile = -1;
}

}  // namespace conv
