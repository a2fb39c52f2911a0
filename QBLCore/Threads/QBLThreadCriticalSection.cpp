#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLUnsupportedOperationError.hpp"
#include "QBLCore/Threads/internal/QBLLayerMutex.hpp"
#include "QBLCore/Threads/internal/QBLLayerResult.hpp"

namespace {

const char kCreate[] =
    "QBLThreadCriticalSection::QBLThreadCriticalSection: TavThread interface or unexpected error";
const char kNoMemory[] =
    "QBLThreadCriticalSection::QBLThreadCriticalSection: TavThread ran out of memory";
const char kLock[] = "QBLThreadCriticalSection::lock: TavThread interface or unexpected error";
const char kUnlock[] = "QBLThreadCriticalSection::unlock: TavThread interface or unexpected error";
const char kTryLock[] =
    "QBLThreadCriticalSection::tryLock: TavThread interface or unexpected error";
const char kNoTryLock[] = "QBLThreadCriticalSection::tryLock not supported on this platform";

}  // namespace

QBLThreadCriticalSection::QBLThreadCriticalSection(int trackOwner)
    : QBLThreadCriticalSection(trackOwner, false) {}

QBLThreadCriticalSection::QBLThreadCriticalSection(int trackOwner, bool recursive)
    : m_pMutex(nullptr) {
    settleCreate(qblCreateMutex(&m_pMutex, trackOwner != 0, recursive), QBL_HERE, kCreate,
                 kNoMemory);
}

QBLThreadCriticalSection::~QBLThreadCriticalSection() { tavXMutexDestroy(m_pMutex); }

void QBLThreadCriticalSection::lock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    settle(tavMutexLockFast(m_pMutex, __FILE__, __LINE__), QBL_HERE, kLock);
}

void QBLThreadCriticalSection::unlock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    settle(tavMutexUnlockFast(m_pMutex), QBL_HERE, kUnlock);
}

bool QBLThreadCriticalSection::tryLock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    const int result = tavMutexTryLockFast(m_pMutex, __FILE__, __LINE__);
    if (result == TAVTHREAD_NOTSUPPORTED) QBL_THROW(QBLUnsupportedOperationError(0, kNoTryLock));
    return settleTry(result, QBL_HERE, kTryLock);
}
