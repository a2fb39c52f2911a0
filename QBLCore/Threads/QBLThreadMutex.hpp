#ifndef QBLCORE_THREADS_QBLTHREADMUTEX_HPP
#define QBLCORE_THREADS_QBLTHREADMUTEX_HPP

#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLThreadLockableResource.hpp"
#include "QBLCore/Threads/QBLTimeout.hpp"

struct TavMutex;

/// A mutex. One thread at a time holds it, and must not lock it again.
///
/// Works before the library is started and after it is stopped. An operation that the thread
/// layer refuses throws QBLThreadResourceError with a text that names the operation.
///
/// Threads: any thread may call any operation; the mutex must outlive every call.
class QBL_API QBL_CAPABILITY("mutex") QBLThreadMutex : public QBLThreadLockableResource {
public:
    /// @param trackOwner  if not 0, the mutex records which thread holds it, for debuggers. This
    ///     costs time. If the library cannot create a record for the thread, lock() throws
    ///     QBLThreadResourceError, but the mutex is locked nevertheless.
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError
    explicit QBLThreadMutex(int trackOwner = 0);
    ~QBLThreadMutex() override;

    void lock() override QBL_ACQUIRE();
    void unlock() override QBL_RELEASE();
    /// @return false if another thread holds the mutex.
    [[nodiscard]] bool tryLock() QBL_TRY_ACQUIRE(true);
    /// Tries about every 100 ms, but does not try again after the last wait. It therefore misses a
    /// mutex that becomes free during the last wait. Below 100 ms it tries only once. From 100 ms
    /// on, a failure may take up to twice the timeout.
    /// @return false if the time ran out.
    [[nodiscard]] bool timedLock(unsigned long ms) QBL_TRY_ACQUIRE(true);
    [[nodiscard]] bool timedLock(QBLMilliseconds time)
        QBL_TRY_ACQUIRE(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return timedLock(time.count());
    }
    /// Wakes up as soon as the mutex is free. Measures the timeout on the monotonic clock.
    /// @return false if the time ran out.
    [[nodiscard]] bool boundedLock(unsigned long ms) QBL_TRY_ACQUIRE(true);
    [[nodiscard]] bool boundedLock(QBLMilliseconds time)
        QBL_TRY_ACQUIRE(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return boundedLock(time.count());
    }

    /// @name Lockable and TimedLockable of the standard
    /// tryLock() and boundedLock() under the standard's names, for std::unique_lock and
    /// std::scoped_lock.
    /// @{

    [[nodiscard]] bool try_lock() QBL_TRY_ACQUIRE(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return tryLock();
    }
    [[nodiscard]] bool try_lock_for(QBLMilliseconds time)
        QBL_TRY_ACQUIRE(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return boundedLock(time.count());
    }
    template <class TimePoint>
    [[nodiscard]] bool try_lock_until(const TimePoint& end)
        QBL_TRY_ACQUIRE(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return qblAttemptUntil(end, [this](QBLMilliseconds left) { return try_lock_for(left); });
    }
    /// @}

protected:
    QBLThreadMutex(int trackOwner, bool recursive);

    TavMutex* m_pMutex;

private:
    friend class QBLThreadConditionVariable;
};

#endif
