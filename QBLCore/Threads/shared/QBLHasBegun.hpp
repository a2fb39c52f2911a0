#ifndef QBLCORE_THREADS_SHARED_QBLHASBEGUN_HPP
#define QBLCORE_THREADS_SHARED_QBLHASBEGUN_HPP

#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"

/// Waits until a thread that was started has begun, which it tells by a post.
/// @return false if it got no memory even to begin.
inline bool qblHasBegun(const QBLThread& thread, QBLThreadSemaphore& began) {
    while (!began.boundedWait(10))
        if (!thread.isAlive()) return began.tryWait();
    return true;
}

#endif
