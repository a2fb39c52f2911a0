#include "TavThread/internal/TavTransition.hpp"

#include <optional>

#include "TavThread/internal/TavSystem.hpp"

TavTransition::TavTransition(TavThread& thread) : m_thread(thread) {
    pthread_mutex_lock(&m_thread.transition);
}

TavTransition::~TavTransition() {
    if (m_bHeld) pthread_mutex_unlock(&m_thread.transition);
}

void TavTransition::to(int newState) {
    const int old = state();
    if (newState == old) return;
    int reason = -1;
    if (newState == TavThreadStateRunning && old == TavThreadStateInitial)
        reason = TavThreadExitAlive;
    else if (newState == TavThreadStateInitial &&
             (old == TavThreadStateRunning || old == TavThreadStateSuspended))
        reason = TavThreadExitNormal;
    else if (newState == TavThreadStateCanceling)
        reason = TavThreadExitCanceled;
    else if (newState == TavThreadStateException)
        reason = TavThreadExitException;
    // A thread that reads the new state must not read the exit reason of an earlier state.
    if (reason >= 0) m_thread.reason.store(reason, std::memory_order_release);
    m_thread.state.store(newState, std::memory_order_release);
    m_iEntered = newState;
}

bool TavTransition::awaitCallbacks() {
    bool waited = false;
    for (; m_thread.calls != 0 && pthread_equal(m_thread.caller, pthread_self()) == 0;
         waited = true)
        tavWaitOn(&m_thread.called, &m_thread.transition, TAVTHREAD_INFINITE);
    return waited;
}

void TavTransition::finish() {
    struct Calling {
        TavThread& thread;
        explicit Calling(TavThread& of) : thread(of) {
            thread.caller = pthread_self();
            ++thread.calls;
        }
        ~Calling() {
            TavHold hold(thread.transition);
            if (--thread.calls == 0) pthread_cond_broadcast(&thread.called);
        }
    };
    const bool none = m_iEntered < 0 || m_thread.traps[m_iEntered].load() == nullptr;
    std::optional<Calling> calling;
    if (!none) calling.emplace(m_thread);
    m_bHeld = false;
    pthread_mutex_unlock(&m_thread.transition);
    if (none) return;
    tavStateTrapsCall(&m_thread, m_iEntered);
}
