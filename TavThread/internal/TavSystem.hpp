#ifndef TAVTHREAD_INTERNAL_TAVSYSTEM_HPP
#define TAVTHREAD_INTERNAL_TAVSYSTEM_HPP

#include <pthread.h>

#include <cerrno>
#include <ctime>
#include <mutex>

#include "TavThread/TavResult.h"

/// Repeats a call while it returns the error number EINTR.
template <class Call>
int tavRetry(Call call) {
    int rc;
    do rc = call();
    while (rc == EINTR);
    return rc;
}

/// Like tavRetry(), for a call that returns -1 and sets errno. Returns the error number, or 0 on
/// success.
template <class Call>
int tavRetryErrno(Call call) {
    for (;;) {
        if (call() != -1) return 0;
        const int err = errno;
        if (err != EINTR) return err != 0 ? err : -1;
    }
}

/// Sleeps for the whole time, even if signals arrive.
void tavSleepMs(unsigned ms);

/// Returns true if threads of the process can run at the same time. Otherwise it is useless to
/// spin. Asks the system once.
bool tavSeveralProcessors();

/// Waits on the condition for at most ms milliseconds of the time-of-day clock. Returns a result
/// code.
int tavWaitOn(pthread_cond_t* condition, pthread_mutex_t* mutex, unsigned ms);

/// Returns the time that the monotonic clock will show after ms milliseconds.
timespec tavDeadline(unsigned ms);

/// Waits on the condition until the deadline on the monotonic clock. Returns a result code.
int tavWaitUntil(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec& deadline);

/// Tries until the time runs out. Sleeps after each try that finds the object busy.
/// @param tryOnce  returns an error number; EBUSY and EAGAIN mean busy.
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

/// A mutex for static data of the layer. It needs no constructor or destructor, so it works before
/// all constructors and after all destructors of static objects.
class TavThreadCriticalSection {
public:
    void lock() { pthread_mutex_lock(&m_mutex); }
    void unlock() { pthread_mutex_unlock(&m_mutex); }

private:
    pthread_mutex_t m_mutex = PTHREAD_MUTEX_INITIALIZER;
};

/// Holds a POSIX mutex for a scope. Also unlocks it if the end of the thread unwinds the scope.
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

/// Counts a waiter for a scope.
/// Requires: the lock that guards the count is held when the scope begins and when it ends.
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
