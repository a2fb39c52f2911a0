#include "QBLCore/FileLock/QBLFileLockRW.hpp"

#include <cerrno>
#include <cstring>
#include <string>

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
