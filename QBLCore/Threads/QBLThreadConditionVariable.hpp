#ifndef QBLCORE_THREADS_QBLTHREADCONDITIONVARIABLE_HPP
#define QBLCORE_THREADS_QBLTHREADCONDITIONVARIABLE_HPP

#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"

class QBLThreadRecursiveCriticalSection;
class QBLThreadRecursiveMutex;
struct TavCondition;

/// Where threads wait, under a lock that the wait gives up meanwhile, for a change that
/// another thread announces. A wait may also end without one: test in a loop.
///
/// The lock is a plain one: a recursive or owner-tracking lock is refused with
/// QBLThreadResourceError, because its record of the holder would be wrong meanwhile. An
/// operation that the thread layer refuses throws the same, with a text that names it.
///
/// Threads: any thread may call any operation; the variable must outlive every call.
///
///     QBLThreadGuard guard(m_mutex);
///     while (m_jobs.empty()) m_arrived.wait(m_mutex);
class QBL_API QBLThreadConditionVariable {
public:
    /// @throws QBLThreadResourceError, also for lack of memory
    QBLThreadConditionVariable();
    virtual ~QBLThreadConditionVariable();
    QBLThreadConditionVariable(const QBLThreadConditionVariable&) = delete;
    QBLThreadConditionVariable& operator=(const QBLThreadConditionVariable&) = delete;

    /// Requires: the caller holds the lock. It holds it again when the wait ends, however.
    void wait(QBLThreadMutex& lock) QBL_REQUIRES(lock);
    void wait(QBLThreadCriticalSection& lock) QBL_REQUIRES(lock);
    void wait(QBLThreadRecursiveMutex&) = delete;
    void wait(QBLThreadRecursiveCriticalSection&) = delete;
    /// @return false when the time ran out; measured on the time of day.
    [[nodiscard]] bool timedWait(QBLThreadMutex& lock, unsigned long ms) QBL_REQUIRES(lock);
    [[nodiscard]] bool timedWait(QBLThreadCriticalSection& lock, unsigned long ms)
        QBL_REQUIRES(lock);
    [[nodiscard]] bool timedWait(QBLThreadRecursiveMutex&, unsigned long) = delete;
    [[nodiscard]] bool timedWait(QBLThreadRecursiveCriticalSection&, unsigned long) = delete;
    /// Wakes one waiter, if there is one.
    void signal();
    /// Wakes every waiter.
    void broadcast();

private:
    TavCondition* m_pCondition;
};

#endif
