#include "QBLCore/FileLock/QBLFileLockRW.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLRuntimeError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileLock/M_LockFile.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"

namespace {

const char kObtaining[] =
    "Error obtaining a file lock. The error message retrieved from underlining system is: ";
const char kReleasing[] =
    "Error releasing a file lock. The error message retrieved from underlining system is: ";

/// Throws an error with the reason from errno if `result` is 0.
void settle(int result, const QBLFileLocation& where, const char* text) {
    if (result != 0) return;
    const int error = errno;
    char buffer[64];
    const char* reason = strerror_r(error, buffer, sizeof buffer);
    QBLRuntimeError(0, (std::string(text) + reason + ".").c_str())
        .hurl(where, nullptr, "QBL_THROW");
}

bool isHeldElsewhere(int error) { return error == EACCES || error == EAGAIN || error == EINTR; }

/// Tries until the file is locked or the time runs out. The pauses grow, because most processes
/// hold a lock either for a very short or for a long time.
bool obtain(int fd, int shared, unsigned long ms) {
    using namespace std::chrono;
    constexpr unsigned long kMost = 0xFFFFFFFEUL;
    // The two values differ if long has 64 bits. NOLINTNEXTLINE(misc-redundant-expression)
    const bool forever = ms == QBLWaitForever || ms == kMost + 1;
    const auto end = steady_clock::now() + milliseconds(std::min(ms, kMost));
    for (nanoseconds pause = microseconds(50);; pause = std::min<nanoseconds>(2 * pause, 1ms)) {
        const int locked = M_LockFile(fd, shared, forever ? 1 : 0);
        if (locked != 0 || !isHeldElsewhere(errno)) {
            settle(locked, QBL_HERE, kObtaining);
            return true;
        }
        const nanoseconds left = end - steady_clock::now();
        if (left <= nanoseconds::zero()) return false;
        std::this_thread::sleep_for(std::min(pause, left));
    }
}

}  // namespace

QBLFileLockRW::QBLFileLockRW(QBLFmFile& file) : m_file(&file) {}

QBLFileLockRW::QBLFileLockRW() : m_file(nullptr) {}

QBLFileLockRW::~QBLFileLockRW() = default;

QBLFmFile* QBLFileLockRW::getFile() const { return m_file; }

void QBLFileLockRW::setFile(QBLFmFile* file) { m_file = file; }

// The assertions use NULL, not nullptr, because their error texts quote the condition.

void QBLFileLockRW::lock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    try {
        QBL_ASSERT(m_file != NULL);
        settle(M_LockFile(m_file->getFileDescriptor(), 0, 1), QBL_HERE, kObtaining);
    } catch (...) {
        qblRethrowTranslated(QBL_HERE, "QBLFileLockRW::lock");
    }
}

void QBLFileLockRW::unlock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    try {
        QBL_ASSERT(m_file != NULL);
        settle(M_UnLockFile(m_file->getFileDescriptor()), QBL_HERE, kReleasing);
    } catch (...) {
        qblRethrowTranslated(QBL_HERE, "QBLFileLockRW::unlock");
    }
}

void QBLFileLockRW::readLock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    try {
        QBL_ASSERT(m_file != NULL);
        settle(M_LockFile(m_file->getFileDescriptor(), 1, 1), QBL_HERE, kObtaining);
    } catch (...) {
        qblRethrowTranslated(QBL_HERE, "QBLFileLockRW::readLock");
    }
}

int QBLFileLockRW::tryLock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    QBL_ASSERT(m_file != NULL);
    return M_LockFile(m_file->getFileDescriptor(), 0, 0);
}

int QBLFileLockRW::tryReadLock() {
    QBL_ASSERT(m_file != NULL);
    return M_LockFile(m_file->getFileDescriptor(), 1, 0);
}

bool QBLFileLockRW::boundedLock(unsigned long ms) QBL_NO_THREAD_SAFETY_ANALYSIS {
    try {
        QBL_ASSERT(m_file != NULL);
        return obtain(m_file->getFileDescriptor(), 0, ms);
    } catch (...) {
        qblRethrowTranslated(QBL_HERE, "QBLFileLockRW::boundedLock");
    }
}

bool QBLFileLockRW::boundedReadLock(unsigned long ms) QBL_NO_THREAD_SAFETY_ANALYSIS {
    try {
        QBL_ASSERT(m_file != NULL);
        return obtain(m_file->getFileDescriptor(), 1, ms);
    } catch (...) {
        qblRethrowTranslated(QBL_HERE, "QBLFileLockRW::boundedReadLock");
    }
}
