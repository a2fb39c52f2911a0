#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"

#include "QBLCore/Exceptions/QBLUnsupportedOperationError.hpp"
#include "QBLCore/Threads/internal/QBLLayerMutex.hpp"
#include "QBLCore/Threads/shared/QBLLayerResult.hpp"

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
const char kBoundedLock[] =
    "QBLThreadCriticalSection::boundedLock: TavThread interface or unexpected error";

// Out of line, so that an uncontended lock or unlock costs little more than the system's lock or
// unlock.
[[gnu::noinline]] void lockGeneral(TavMutex* mutex) {
    settle(tavMutexLockGeneral(mutex, __FILE__, __LINE__), QBL_HERE, kLock);
}

[[gnu::noinline]] void unlockGeneral(TavMutex* mutex) {
    settle(tavMutexUnlockGeneral(mutex), QBL_HERE, kUnlock);
}

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
    if (!tavMutexLockPlain(m_pMutex)) lockGeneral(m_pMutex);
}

void QBLThreadCriticalSection::unlock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    if (!tavMutexUnlockPlain(m_pMutex)) unlockGeneral(m_pMutex);
}

bool QBLThreadCriticalSection::tryLock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    const int result = tavXMutexTryLock_(m_pMutex, __FILE__, __LINE__);
    if (result == TAVTHREAD_NOTSUPPORTED)
        qblThrow<QBLUnsupportedOperationError>(QBL_HERE, kNoTryLock);
    return settleTry(result, QBL_HERE, kTryLock);
}

bool QBLThreadCriticalSection::boundedLock(unsigned long ms) QBL_NO_THREAD_SAFETY_ANALYSIS {
    return settleTimed(tavXMutexBoundedLock_(m_pMutex, layerTimeout(ms), __FILE__, __LINE__),
                       QBL_HERE, kBoundedLock);
}
