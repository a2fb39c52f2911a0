#ifndef TAVTHREAD_INTERNAL_TAVEVENTRECORD_HPP
#define TAVTHREAD_INTERNAL_TAVEVENTRECORD_HPP

#include <pthread.h>

#include "TavThread/TavEvent.h"

enum TavEventFlags : unsigned { kTavEventManualReset = 1, kTavEventSignaled = 2 };

struct TavEvent {
    pthread_mutex_t mutex;
    pthread_cond_t condition;
    int waiters = 0;     // guarded by mutex
    unsigned flags = 0;  // guarded by mutex
};

/// The rest of a wait and of a signal when they have more to do. Requires: the mutex is held; it
/// is released.
int tavEventWaitHeld(TavEvent* e, unsigned ms);
int tavEventSignalHeld(TavEvent* e);

/// tavXEventTimedWait at the cost of the POSIX mutex if the event is signalled.
inline int tavEventWaitFast(TavEvent* e, unsigned ms) {
    if (e == nullptr) return TAVTHREAD_INVALID;
    pthread_mutex_lock(&e->mutex);
    if ((e->flags & kTavEventSignaled) == 0) return tavEventWaitHeld(e, ms);
    if ((e->flags & kTavEventManualReset) == 0) e->flags &= ~kTavEventSignaled;
    pthread_mutex_unlock(&e->mutex);
    return TAVTHREAD_OK;
}

/// tavXEventSignal at the cost of the POSIX mutex if nobody waits.
inline int tavEventSignalFast(TavEvent* e) {
    if (e == nullptr) return TAVTHREAD_INVALID;
    pthread_mutex_lock(&e->mutex);
    e->flags |= kTavEventSignaled;
    if (e->waiters != 0) return tavEventSignalHeld(e);
    pthread_mutex_unlock(&e->mutex);
    return TAVTHREAD_OK;
}

#endif
