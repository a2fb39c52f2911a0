#include "QBLCore/Threads/QBLThreadRecursiveMutex.hpp"

#include "TavThread/shared/TavMutexRecord.hpp"

QBLThreadRecursiveMutex::QBLThreadRecursiveMutex(int trackOwner)
    : QBLThreadMutex(trackOwner, true) {}

QBLThreadRecursiveMutex::~QBLThreadRecursiveMutex() = default;

void QBLThreadRecursiveMutex::lock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    if (!tavMutexLockRecursive(m_pMutex)) QBLThreadMutex::lock();
}

void QBLThreadRecursiveMutex::unlock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    if (!tavMutexUnlockRecursive(m_pMutex)) QBLThreadMutex::unlock();
}
