#ifndef QBLCORE_THREADS_SHARED_QBLHASBEGUN_HPP
#define QBLCORE_THREADS_SHARED_QBLHASBEGUN_HPP

#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"

/// Waits until a started thread has begun. The thread must post `began` when it begins.
/// @return false if the thread had no memory to begin.
inline bool qblHasBegun(const QBLThread& thread, QBLThreadSemaphore& began) {
    while (!began.boundedWait(10))
        if (!thread.isAlive()) return began.tryWait();
    return true;
}

#endif
