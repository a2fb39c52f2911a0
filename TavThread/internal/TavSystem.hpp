#ifndef TAVTHREAD_INTERNAL_TAVSYSTEM_HPP
#define TAVTHREAD_INTERNAL_TAVSYSTEM_HPP

#include <pthread.h>

#include <cerrno>
#include <mutex>

#include "TavThread/TavResult.h"

/// Repeats a call that returns its error number while that is EINTR.
template <class Call>
int tavRetry(Call call) {
    int rc;
    do rc = call();
    while (rc == EINTR);
    return rc;
}

/// The same for a call that returns -1 and sets errno; returns the error number, or 0.
template <class Call>
int tavRetryErrno(Call call) {
    for (;;) {
        if (call() != -1) return 0;
        const int err = errno;
        if (err != EINTR) return err != 0 ? err : -1;
    }
}

/// Sleeps the whole time, whatever signals arrive.
void tavSleepMs(unsigned ms);

/// Whether the threads of the process can run at the same time: only then is it of any use to wait
/// for another one without sleeping. Asked of the system once.
bool tavSeveralProcessors();

/// Waits on the condition, up to ms milliseconds of the time-of-day clock; returns a result code.
int tavWaitOn(pthread_cond_t* condition, pthread_mutex_t* mutex, unsigned ms);

/// Tries until the time is up, with a sleep after each try that found the object taken.
/// @param tryOnce  returns an error number; EBUSY and EAGAIN are busy.
/// @return a result code.
template <class Try>
int tavPoll(unsigned ms, Try tryOnce) {
    unsigned steps = ms / 100;
    const unsigned interval = steps != 0 ? ms / steps : ms;
    for (;;) {
        const int err = tavRetry(tryOnce);
        if (err != EBUSY && err != EAGAIN) return tavThread_MapError(err);
        tavSleepMs(interval);
        if (steps < 1) return TAVTHREAD_TIMEOUT;
        --steps;
    }
}

/// A mutex for statics of the layer: usable before any constructor has run and after all
/// destructors have, because it needs neither.
class TavThreadCriticalSection {
public:
    void lock() { pthread_mutex_lock(&m_mutex); }
    void unlock() { pthread_mutex_unlock(&m_mutex); }

private:
    pthread_mutex_t m_mutex = PTHREAD_MUTEX_INITIALIZER;
};

/// Holds a POSIX mutex in a scope that a thread may also leave by being unwound.
class TavHold {
public:
    explicit TavHold(pthread_mutex_t& mutex) : m_mutex(mutex) { pthread_mutex_lock(&m_mutex); }
    TavHold(pthread_mutex_t& mutex, std::adopt_lock_t) : m_mutex(mutex) {}
    ~TavHold() { pthread_mutex_unlock(&m_mutex); }
    TavHold(const TavHold&) = delete;
    TavHold& operator=(const TavHold&) = delete;

private:
    pthread_mutex_t& m_mutex;
};

/// Counts a waiter while in scope; the lock that guards the count is held at both ends.
class TavCounted {
public:
    explicit TavCounted(int& waiters) : m_waiters(waiters) { ++m_waiters; }
    ~TavCounted() { --m_waiters; }
    TavCounted(const TavCounted&) = delete;
    TavCounted& operator=(const TavCounted&) = delete;

private:
    int& m_waiters;
};

#endif
