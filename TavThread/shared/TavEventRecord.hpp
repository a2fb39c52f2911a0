#ifndef TAVTHREAD_SHARED_TAVEVENTRECORD_HPP
#define TAVTHREAD_SHARED_TAVEVENTRECORD_HPP

#include <pthread.h>

#include <atomic>

#include "TavThread/TavEvent.h"
#include "TavThread/shared/TavHandOver.hpp"

enum TavEventFlags : unsigned {
    kTavEventManualReset = 1,
    kTavEventSignaled = 2,
    kTavEventWaitedFor = 4  // changes under the mutex only
};

/// While no thread waits, the event consists only of its flags, and they change without the mutex.
/// Once kTavEventWaitedFor is set, threads signal under the mutex. A waiter holds the mutex when it
/// looks for a signal, so no signal is lost. A waiter may return and destroy the event while the
/// thread that signalled it still holds the mutex. Destruction waits for that thread.
struct TavEvent {
    pthread_mutex_t mutex;
    pthread_cond_t condition;
    int waiters = 0;  // guarded by mutex
    std::atomic<unsigned> flags{0};
};

int tavEventWaitGeneral(TavEvent* e, unsigned ms);
int tavEventSignalGeneral(TavEvent* e);

/// Returns true if the event is signalled, and resets it unless it is a manual-reset event.
inline bool tavEventTake(TavEvent* e) {
    unsigned flags = e->flags.load(std::memory_order_acquire);
    while ((flags & kTavEventSignaled) != 0) {
        if ((flags & kTavEventManualReset) != 0 ||
            e->flags.compare_exchange_weak(flags, flags & ~kTavEventSignaled,
                                           std::memory_order_acquire)) {
            tavTaken(e);
            return true;
        }
    }
    return false;
}

/// tavXEventTimedWait, but with only one atomic operation if the event is signalled.
inline int tavEventWaitFast(TavEvent* e, unsigned ms) {
    return e != nullptr && tavEventTake(e) ? TAVTHREAD_OK : tavEventWaitGeneral(e, ms);
}

/// tavXEventSignal, but with only one atomic operation if no thread waits.
inline int tavEventSignalFast(TavEvent* e) {
    if (e != nullptr) {
        tavHandingOver(e);
        unsigned flags = e->flags.load(std::memory_order_relaxed);
        while ((flags & kTavEventWaitedFor) == 0)
            if (e->flags.compare_exchange_weak(flags, flags | kTavEventSignaled,
                                               std::memory_order_release,
                                               std::memory_order_relaxed))
                return TAVTHREAD_OK;
    }
    return tavEventSignalGeneral(e);
}

#endif
