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

/// While nobody waits the flags are all there is to the event, and change without the mutex. Once
/// the waited-for mark is set a signal is given under the mutex, which a waiter holds when it looks
/// for one: so none is lost. A waiter may return, and destroy the event, while its signaller is
/// still under the mutex: destruction waits for that.
struct TavEvent {
    pthread_mutex_t mutex;
    pthread_cond_t condition;
    int waiters = 0;  // guarded by mutex
    std::atomic<unsigned> flags{0};
};

int tavEventWaitGeneral(TavEvent* e, unsigned ms);
int tavEventSignalGeneral(TavEvent* e);

/// Consumes the signal, if there is one, as the event's kind says.
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

/// tavXEventTimedWait at the cost of one atomic operation if the event is signalled.
inline int tavEventWaitFast(TavEvent* e, unsigned ms) {
    return e != nullptr && tavEventTake(e) ? TAVTHREAD_OK : tavEventWaitGeneral(e, ms);
}

/// tavXEventSignal at the cost of one atomic operation if nobody waits.
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
