#ifndef TAVTHREAD_INTERNAL_TAVTRANSITION_HPP
#define TAVTHREAD_INTERNAL_TAVTRANSITION_HPP

#include "TavThread/shared/TavThreadRecord.hpp"

/// A change of a thread's state. Holds the thread's transition mutex until finish().
class TavTransition {
public:
    explicit TavTransition(TavThread& thread);
    ~TavTransition();
    TavTransition(const TavTransition&) = delete;
    TavTransition& operator=(const TavTransition&) = delete;

    int state() const { return m_thread.state.load(std::memory_order_relaxed); }
    /// Waits until no other thread runs callbacks of an earlier change.
    /// @return true if it waited. The state may have changed during the wait.
    bool awaitCallbacks();
    /// Sets the exit reason, then the state. Does nothing if the thread is already in this state.
    void to(int newState);
    /// Unlocks the mutex, then calls the callbacks of the state that was set last.
    void finish();

private:
    TavThread& m_thread;
    int m_iEntered = -1;
    bool m_bHeld = true;
};

#endif
