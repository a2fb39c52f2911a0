#include <sched.h>

#include <optional>
#include <utility>

#include "TavThread/TavThread.h"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/internal/TavTransition.hpp"

// The `resumed` semaphore counts 0 while a suspension is pending or in effect, else 1. Threads set
// it under the transition mutex. Only the suspended thread waits for it, without the mutex. After
// the thread has woken up, it sets the semaphore again: to 0 if another suspension is pending, else
// to 1.
//
// A suspended thread resumes only after the callbacks of the change to Running have returned. They
// run without the mutex. `continuing` is set until they return, and a thread that wakes up earlier
// sleeps again. A suspension that is requested before the thread has woken up takes effect at its
// next checkpoint.

namespace {

/// Requires: the transition mutex is held.
int setResumed(TavThread& thread, bool resumed) {
    while (tavRetryErrno([&] { return sem_trywait(&thread.resumed); }) == 0) {
    }
    if (!resumed) return TAVTHREAD_OK;
    return tavThread_MapError(tavRetryErrno([&] { return sem_post(&thread.resumed); }));
}

/// Hides that the thread runs callbacks of an earlier change. Otherwise the thread that continues
/// this thread would wait for these callbacks, and deadlock.
class OuterCallbacks {
public:
    /// Requires: the transition mutex is held.
    explicit OuterCallbacks(TavThread& self)
        : m_self(self), m_iCalls(std::exchange(self.calls, 0)) {}
    /// Runs also if the thread is ended while it sleeps.
    ~OuterCallbacks() {
        if (m_iCalls == 0) return;
        TavHold hold(m_self.transition);
        m_self.calls += m_iCalls;
        m_self.caller = pthread_self();
    }
    OuterCallbacks(const OuterCallbacks&) = delete;
    OuterCallbacks& operator=(const OuterCallbacks&) = delete;

private:
    TavThread& m_self;
    const int m_iCalls;
};

/// Suspends the calling thread if a suspension is requested and the thread is not cancelled.
void suspendHere(TavThread& self) {
    std::optional<OuterCallbacks> outer;
    {
        TavTransition change(self);
        if (!self.has(kTavThreadSuspendPending)) return;
        self.unmark(kTavThreadSuspendPending);
        if (self.cancelled()) {
            setResumed(self, true);
            return;
        }
        self.asleep = true;
        outer.emplace(self);
        change.to(TavThreadStateSuspended);
        change.finish();
    }
    for (;;) {
        tavRetryErrno([&] { return sem_wait(&self.resumed); });
        TavTransition change(self);
        if (change.state() == TavThreadStateSuspended || self.continuing) continue;
        self.asleep = false;
        setResumed(self, !self.has(kTavThreadSuspendPending));
        change.to(self.cancelled() ? TavThreadStateCanceling : TavThreadStateRunning);
        change.finish();
        return;
    }
}

/// Sets `continuing` for a scope. Wakes the thread at the end, even if a callback ends the calling
/// thread.
class Continuing {
public:
    /// Requires: the transition mutex is held.
    explicit Continuing(TavThread& thread) : m_thread(thread) { thread.continuing = true; }
    ~Continuing() {
        if (!m_bFinished) finish();
    }
    Continuing(const Continuing&) = delete;
    Continuing& operator=(const Continuing&) = delete;

    int finish() {
        m_bFinished = true;
        TavHold hold(m_thread.transition);
        m_thread.continuing = false;
        return setResumed(m_thread, true);
    }

private:
    TavThread& m_thread;
    bool m_bFinished = false;
};

int continueThread(TavThread& thread) {
    TavTransition change(thread);
    while (change.state() == TavThreadStateSuspended) {
        // The suspended thread runs the callbacks of Suspended. The callbacks of Running must wait
        // for them.
        if (change.awaitCallbacks()) continue;
        Continuing continuing(thread);
        change.to(TavThreadStateRunning);
        change.finish();
        return continuing.finish();
    }
    if (!thread.has(kTavThreadSuspendPending)) return TAVTHREAD_OK;
    thread.unmark(kTavThreadSuspendPending);
    return setResumed(thread, true);
}

}  // namespace

int tavThreadCheckpoint(TavThread& self) {
    if (self.has(kTavThreadSuspendPending)) suspendHere(self);
    if (self.cancelled()) {
        TavTransition change(self);
        // A callback of the thread's last state may call this function after the routine has ended.
        if (change.state() == TavThreadStateRunning) change.to(TavThreadStateCanceling);
        change.finish();
    }
    return self.state.load(std::memory_order_acquire);
}

extern "C" {

int tavXThreadState(TavThread* thread) {
    if (thread != nullptr) return thread->state.load(std::memory_order_acquire);
    TavThread* self = tavThreadPeek();
    if (self != nullptr) tavThreadCheckpoint(*self);
    sched_yield();
    return self != nullptr ? self->state.load(std::memory_order_acquire) : TavThreadStateRunning;
}

int tavXThreadSuspend(TavThread* thread) {
    if (thread == nullptr) return TAVTHREAD_INVALID;
    TavTransition change(*thread);
    if (change.state() != TavThreadStateRunning || thread->has(kTavThreadSuspendPending))
        return TAVTHREAD_OK;
    thread->mark(kTavThreadSuspendPending);
    return thread->asleep ? TAVTHREAD_OK : setResumed(*thread, false);
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
