#include "QBLCore/Threads/QBLThreadRWLock.hpp"

#include "QBLCore/Threads/shared/QBLLayerResult.hpp"
#include "TavThread/TavRWLock.h"
#include "TavThread/shared/TavRWLockRecord.hpp"

namespace {

const char kCreate[] = "QBLThreadRWLock::QBLThreadRWLock: TavThread interface or unexpected error";
const char kNoMemory[] = "QBLThreadRWLock::QBLThreadRWLock: TavThread ran out of memory";
const char kLock[] = "QBLThreadRWLock::lock: TavThread interface or unexpected error";
const char kUnlock[] = "QBLThreadRWLock::unlock: TavThread interface or unexpected error";
const char kTryLock[] = "QBLThreadRWLock::tryLock: TavThread interface or unexpected error";
const char kTimedLock[] = "QBLThreadRWLock::timedLock: TavThread interface or unexpected error";
const char kReadLock[] = "QBLThreadRWLock::readLock: TavThread interface or unexpected error";
const char kTryReadLock[] = "QBLThreadRWLock::tryReadLock: TavThread interface or unexpected error";
const char kTimedReadLock[] =
    "QBLThreadRWLock::timedReadLock: TavThread interface or unexpected error";
const char kBoundedLock[] = "QBLThreadRWLock::boundedLock: TavThread interface or unexpected error";
const char kBoundedReadLock[] =
    "QBLThreadRWLock::boundedReadLock: TavThread interface or unexpected error";

}  // namespace

QBLThreadRWLock::QBLThreadRWLock() : m_pLock(nullptr) {
    settleCreate(tavXRWLockCreate(&m_pLock, TavRWLockAttrEnd), QBL_HERE, kCreate, kNoMemory);
}

QBLThreadRWLock::~QBLThreadRWLock() { tavXRWLockDestroy(m_pLock); }

void QBLThreadRWLock::lock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    settle(tavRWLockWriteLockFast(m_pLock, TAVTHREAD_INFINITE), QBL_HERE, kLock);
}

void QBLThreadRWLock::unlock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    settle(tavRWLockUnlockFast(m_pLock), QBL_HERE, kUnlock);
}

void QBLThreadRWLock::readLock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    settle(tavRWLockReadLockFast(m_pLock, TAVTHREAD_INFINITE), QBL_HERE, kReadLock);
}

bool QBLThreadRWLock::tryLock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    return settleTry(tavRWLockTryWriteLockFast(m_pLock), QBL_HERE, kTryLock);
}

bool QBLThreadRWLock::tryReadLock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    return settleTry(tavRWLockTryReadLockFast(m_pLock), QBL_HERE, kTryReadLock);
}

bool QBLThreadRWLock::timedLock(unsigned long ms) QBL_NO_THREAD_SAFETY_ANALYSIS {
    return settleTimed(tavRWLockWriteLockFast(m_pLock, layerTimeout(ms)), QBL_HERE, kTimedLock);
}

bool QBLThreadRWLock::timedReadLock(unsigned long ms) QBL_NO_THREAD_SAFETY_ANALYSIS {
    return settleTimed(tavRWLockReadLockFast(m_pLock, layerTimeout(ms)), QBL_HERE, kTimedReadLock);
}

bool QBLThreadRWLock::boundedLock(unsigned long ms) QBL_NO_THREAD_SAFETY_ANALYSIS {
    return settleTimed(tavXRWLockBoundedWriteLock(m_pLock, layerTimeout(ms)), QBL_HERE,
                       kBoundedLock);
}

bool QBLThreadRWLock::boundedReadLock(unsigned long ms) QBL_NO_THREAD_SAFETY_ANALYSIS {
    return settleTimed(tavXRWLockBoundedReadLock(m_pLock, layerTimeout(ms)), QBL_HERE,
                       kBoundedReadLock);
}
