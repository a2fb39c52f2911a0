#include "QBLCore/Threads/QBLThreadRecursiveCriticalSection.hpp"

#include "TavThread/shared/TavMutexRecord.hpp"

QBLThreadRecursiveCriticalSection::QBLThreadRecursiveCriticalSection(int trackOwner)
    : QBLThreadCriticalSection(trackOwner, true) {}

QBLThreadRecursiveCriticalSection::~QBLThreadRecursiveCriticalSection() = default;

void QBLThreadRecursiveCriticalSection::lock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    if (!tavMutexLockRecursive(m_pMutex)) QBLThreadCriticalSection::lock();
}

void QBLThreadRecursiveCriticalSection::unlock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    if (!tavMutexUnlockRecursive(m_pMutex)) QBLThreadCriticalSection::unlock();
}
