#include "QBLCore/Threads/QBLThreadMutex.hpp"

#include "QBLCore/Threads/internal/QBLLayerMutex.hpp"
#include "QBLCore/Threads/shared/QBLLayerResult.hpp"

namespace {

const char kCreate[] = "QBLThreadMutex::QBLThreadMutex: TavThread interface or unexpected error";
const char kNoMemory[] = "QBLThreadMutex::QBLThreadMutex: TavThread ran out of memory";
const char kLock[] = "QBLThreadMutex::lock: TavThread interface or unexpected error";
const char kUnlock[] = "QBLThreadMutex::unlock: TavThread interface or unexpected error";
const char kTryLock[] = "QBLThreadMutex::tryLock: TavThread interface or unexpected error";
const char kTimedLock[] = "QBLThreadMutex::timedLock: TavThread interface or unexpected error";
const char kBoundedLock[] = "QBLThreadMutex::boundedLock: TavThread interface or unexpected error";

}  // namespace

// Out of line, so that an uncontended lock or unlock costs little more than the system's lock or
// unlock.
[[gnu::noinline]] void qblMutexLockGeneral(TavMutex* mutex) {
    settle(tavMutexLockGeneral(mutex, __FILE__, __LINE__), QBL_HERE, kLock);
}

[[gnu::noinline]] void qblMutexUnlockGeneral(TavMutex* mutex) {
    settle(tavMutexUnlockGeneral(mutex), QBL_HERE, kUnlock);
}

QBLThreadMutex::QBLThreadMutex(int trackOwner) : QBLThreadMutex(trackOwner, false) {}

QBLThreadMutex::QBLThreadMutex(int trackOwner, bool recursive) : m_pMutex(nullptr) {
    settleCreate(qblCreateMutex(&m_pMutex, trackOwner != 0, recursive), QBL_HERE, kCreate,
                 kNoMemory);
}

QBLThreadMutex::~QBLThreadMutex() { tavXMutexDestroy(m_pMutex); }

void QBLThreadMutex::lock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    TavMutex* const mutex = m_pMutex;
    if (!tavMutexLockPlain(mutex)) qblMutexLockGeneral(mutex);
}

void QBLThreadMutex::unlock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    TavMutex* const mutex = m_pMutex;
    if (!tavMutexUnlockPlain(mutex)) qblMutexUnlockGeneral(mutex);
}

bool QBLThreadMutex::tryLock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    return settleTry(tavXMutexTryLock_(m_pMutex, __FILE__, __LINE__), QBL_HERE, kTryLock);
}

bool QBLThreadMutex::timedLock(unsigned long ms) QBL_NO_THREAD_SAFETY_ANALYSIS {
    return settleTimed(tavXMutexTimedLock_(m_pMutex, layerTimeout(ms), __FILE__, __LINE__),
                       QBL_HERE, kTimedLock);
}

bool QBLThreadMutex::boundedLock(unsigned long ms) QBL_NO_THREAD_SAFETY_ANALYSIS {
    return settleTimed(tavXMutexBoundedLock_(m_pMutex, layerTimeout(ms), __FILE__, __LINE__),
                       QBL_HERE, kBoundedLock);
}
