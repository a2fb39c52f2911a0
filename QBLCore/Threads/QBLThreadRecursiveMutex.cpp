#include "QBLCore/Threads/QBLThreadRecursiveMutex.hpp"

#include "QBLCore/Threads/internal/QBLLayerMutex.hpp"

QBLThreadRecursiveMutex::QBLThreadRecursiveMutex(int trackOwner)
    : QBLThreadMutex(trackOwner, true) {}

QBLThreadRecursiveMutex::~QBLThreadRecursiveMutex() = default;

void QBLThreadRecursiveMutex::lock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    TavMutex* const mutex = m_pMutex;
    if (!tavMutexLockRecursive(mutex)) qblMutexLockGeneral(mutex);
}

void QBLThreadRecursiveMutex::unlock() QBL_NO_THREAD_SAFETY_ANALYSIS {
    TavMutex* const mutex = m_pMutex;
    if (!tavMutexUnlockRecursive(mutex)) qblMutexUnlockGeneral(mutex);
}
