#include <sched.h>

#include "TavThread/TavThread.h"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/internal/TavThreadRecord.hpp"

// Suspension passes a single token through the `resumed` semaphore. Whoever asks for a suspension
// takes the token away, and whoever ends it puts the token back; the suspended thread waits for
// the token and puts it back when it has woken, unless the next suspension has been asked for
// meanwhile, which then keeps it.

namespace {

bool takeToken(TavThread& thread) {
    return tavRetryErrno([&] { return sem_trywait(&thread.resumed); }) == 0;
}

int putToken(TavThread& thread) {
    return tavThread_MapError(tavRetryErrno([&] { return sem_post(&thread.resumed); }));
}

/// Stops the calling thread if that is asked for and no cancellation stands against it.
void suspendHere(TavThread& self) {
    {
        TavTransition change(self);
        if (!self.has(kTavThreadSuspendPending)) return;
        self.unmark(kTavThreadSuspendPending);
        if (self.cancelled()) {
            putToken(self);
            return;
        }
        change.to(TavThreadStateSuspended);
        change.finish();
    }
    tavRetryErrno([&] { return sem_wait(&self.resumed); });
    TavTransition change(self);
    if (!self.has(kTavThreadSuspendPending)) putToken(self);
    if (change.state() != TavThreadStateCanceling)
        change.to(self.cancelled() ? TavThreadStateCanceling : TavThreadStateRunning);
    change.finish();
}

int continueThread(TavThread& thread) {
    TavTransition change(thread);
    const bool pending = thread.has(kTavThreadSuspendPending);
    if (!pending && change.state() != TavThreadStateSuspended) return TAVTHREAD_OK;
    takeToken(thread);  // keeps the count at most 1
    change.to(TavThreadStateRunning);
    thread.unmark(kTavThreadSuspendPending);
    const int rc = putToken(thread);
    change.finish();
    return rc;
}

}  // namespace

int tavThreadCheckpoint(TavThread& self) {
    if (self.has(kTavThreadSuspendPending)) suspendHere(self);
    if (self.cancelled()) {
        TavTransition change(self);
        change.to(TavThreadStateCanceling);
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
    takeToken(*thread);  // a thread that is just waking has it, and will leave it with us
    thread->mark(kTavThreadSuspendPending);
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
