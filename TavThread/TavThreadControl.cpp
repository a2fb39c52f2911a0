#include <sched.h>

#include "TavThread/TavThread.h"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/internal/TavThreadRecord.hpp"

// The `resumed` semaphore counts 0 while a suspension is pending or in effect, else 1. It is set
// under the transition mutex, and taken outside it by the suspended thread alone, which sets it
// anew when it has woken: the next suspension may have been asked for, and ended, meanwhile.

namespace {

/// Requires: the transition mutex is held.
int setResumed(TavThread& thread, bool resumed) {
    while (tavRetryErrno([&] { return sem_trywait(&thread.resumed); }) == 0) {
    }
    if (!resumed) return TAVTHREAD_OK;
    return tavThread_MapError(tavRetryErrno([&] { return sem_post(&thread.resumed); }));
}

/// Stops the calling thread if that is asked for and no cancellation stands against it.
void suspendHere(TavThread& self) {
    {
        TavTransition change(self);
        if (!self.has(kTavThreadSuspendPending)) return;
        self.unmark(kTavThreadSuspendPending);
        if (self.cancelled()) {
            setResumed(self, true);
            return;
        }
        self.asleep = true;
        change.to(TavThreadStateSuspended);
        change.finish();
    }
    for (;;) {
        tavRetryErrno([&] { return sem_wait(&self.resumed); });
        TavTransition change(self);
        if (change.state() == TavThreadStateSuspended) continue;  // again, since it was woken
        self.asleep = false;
        setResumed(self, true);
        change.to(self.cancelled() ? TavThreadStateCanceling : TavThreadStateRunning);
        change.finish();
        return;
    }
}

int continueThread(TavThread& thread) {
    TavTransition change(thread);
    const bool pending = thread.has(kTavThreadSuspendPending);
    if (!pending && change.state() != TavThreadStateSuspended) return TAVTHREAD_OK;
    // A thread that was told to cancel stays told.
    if (change.state() != TavThreadStateCanceling) change.to(TavThreadStateRunning);
    thread.unmark(kTavThreadSuspendPending);
    const int rc = setResumed(thread, true);
    change.finish();
    return rc;
}

}  // namespace

int tavThreadCheckpoint(TavThread& self) {
    if (self.has(kTavThreadSuspendPending)) suspendHere(self);
    if (self.cancelled()) {
        TavTransition change(self);
        // A thread past its end can ask too, from a callback of its last state.
        if (change.state() == TavThreadStateRunning) change.to(TavThreadStateCanceling);
        change.finish();
    }
    sched_yield();
    return self.state.load(std::memory_order_acquire);
}

extern "C" {

int tavXThreadState(TavThread* thread) {
    if (thread != nullptr) return thread->state.load(std::memory_order_acquire);
    if (TavThread* self = tavThreadPeek()) return tavThreadCheckpoint(*self);
    sched_yield();
    return TavThreadStateRunning;
}

int tavXThreadSuspend(TavThread* thread) {
    if (thread == nullptr) return TAVTHREAD_INVALID;
    TavTransition change(*thread);
    if (change.state() != TavThreadStateRunning || thread->has(kTavThreadSuspendPending))
        return TAVTHREAD_OK;
    if (!thread->asleep) {
        thread->mark(kTavThreadSuspendPending);
        return setResumed(*thread, false);
    }
    // Continued, but still asleep: back to where it was, unless it is to wake up and cancel.
    if (thread->cancelled()) return TAVTHREAD_OK;
    setResumed(*thread, false);
    change.to(TavThreadStateSuspended);
    change.finish();
    return TAVTHREAD_OK;
}

int tavXThreadContinue(TavThread* thread) {
    return thread != nullptr ? continueThread(*thread) : TAVTHREAD_INVALID;
}

int tavXThreadCancel(TavThread* thread) {
    if (thread == nullptr) return TAVTHREAD_INVALID;
    thread->cancelRequested.store(true, std::memory_order_release);
    return continueThread(*thread);
}

int tavXThreadSetCancel(TavThread* thread, int* flag, int inheritable) {
    if (thread == nullptr) thread = tavThreadSelf();
    if (thread == nullptr) return TAVTHREAD_ERROR;
    thread->cancelFlag.store(flag, std::memory_order_release);
    if (inheritable != 0)
        thread->mark(kTavThreadCancelInheritable);
    else
        thread->unmark(kTavThreadCancelInheritable);
    return TAVTHREAD_OK;
}

int tavXThreadCancelReset(void) {
    TavThread* self = tavThreadSelf();
    if (self == nullptr) return TAVTHREAD_ERROR;
    self->cancelRequested.store(false, std::memory_order_release);
    TavTransition change(*self);
    if (change.state() == TavThreadStateCanceling) change.to(TavThreadStateRunning);
    change.finish();
    return TAVTHREAD_OK;
}

}  // extern "C"
