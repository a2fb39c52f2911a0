#ifndef TAVTHREAD_INTERNAL_TAVTRANSITION_HPP
#define TAVTHREAD_INTERNAL_TAVTRANSITION_HPP

#include "TavThread/shared/TavThreadRecord.hpp"

/// A change of a thread's state, made under its transition mutex.
class TavTransition {
public:
    explicit TavTransition(TavThread& thread);
    ~TavTransition();
    TavTransition(const TavTransition&) = delete;
    TavTransition& operator=(const TavTransition&) = delete;

    int state() const { return m_thread.state.load(std::memory_order_relaxed); }
    /// Waits until another thread has called the callbacks of the change that it made.
    /// @return whether it had to: the state may be another one.
    bool awaitCallbacks();
    /// Enters a state, the exit reason first; nothing if it is the present one.
    void to(int newState);
    /// Lets the mutex go, then calls the callbacks of the state entered last.
    void finish();

private:
    TavThread& m_thread;
    int m_iEntered = -1;
    bool m_bHeld = true;
};

#endif
