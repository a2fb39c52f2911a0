#ifndef QBLCORE_THREADS_QBLTHREADCONDITIONVARIABLE_HPP
#define QBLCORE_THREADS_QBLTHREADCONDITIONVARIABLE_HPP

#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"

class QBLThreadRecursiveCriticalSection;
class QBLThreadRecursiveMutex;
struct TavCondition;

/// Threads wait here for a change that another thread signals. A waiter holds a lock, which is
/// released during the wait. A wait may also end without a signal, so test for the change in a
/// loop.
///
/// The lock must neither be recursive nor track its owner. With such a lock, a wait throws
/// QBLThreadResourceError, because the lock's record of its holder would be wrong during the wait.
/// An operation that the thread layer refuses throws the same error, with a text that names the
/// operation.
///
/// Threads: any thread may call any operation; the variable must outlive every call.
///
///     QBLThreadGuard guard(m_mutex);
///     while (m_jobs.empty()) m_arrived.wait(m_mutex);
class QBL_API QBLThreadConditionVariable {
public:
    /// @throws QBLThreadResourceError, even if memory is exhausted
    QBLThreadConditionVariable();
    virtual ~QBLThreadConditionVariable();
    QBLThreadConditionVariable(const QBLThreadConditionVariable&) = delete;
    QBLThreadConditionVariable& operator=(const QBLThreadConditionVariable&) = delete;

    /// Requires: the caller holds the lock. The caller holds the lock again when the wait ends,
    /// even if an exception or a cancellation ends it.
    void wait(QBLThreadMutex& lock) QBL_REQUIRES(lock);
    void wait(QBLThreadCriticalSection& lock) QBL_REQUIRES(lock);
    void wait(QBLThreadRecursiveMutex&) = delete;
    void wait(QBLThreadRecursiveCriticalSection&) = delete;
    /// @param ms  measured on the time-of-day clock
    /// @return false if the time ran out.
    [[nodiscard]] bool timedWait(QBLThreadMutex& lock, unsigned long ms) QBL_REQUIRES(lock);
    [[nodiscard]] bool timedWait(QBLThreadCriticalSection& lock, unsigned long ms)
        QBL_REQUIRES(lock);
    [[nodiscard]] bool timedWait(QBLThreadRecursiveMutex&, unsigned long) = delete;
    [[nodiscard]] bool timedWait(QBLThreadRecursiveCriticalSection&, unsigned long) = delete;
    [[nodiscard]] bool timedWait(QBLThreadMutex& lock, QBLMilliseconds time) QBL_REQUIRES(lock) {
        return timedWait(lock, time.count());
    }
    [[nodiscard]] bool timedWait(QBLThreadCriticalSection& lock, QBLMilliseconds time)
        QBL_REQUIRES(lock) {
        return timedWait(lock, time.count());
    }
    [[nodiscard]] bool timedWait(QBLThreadRecursiveMutex&, QBLMilliseconds) = delete;
    [[nodiscard]] bool timedWait(QBLThreadRecursiveCriticalSection&, QBLMilliseconds) = delete;
    /// Wakes one waiter, if there is one.
    void signal();
    /// Wakes every waiter.
    void broadcast();

private:
    TavCondition* m_pCondition;
};

#endif
