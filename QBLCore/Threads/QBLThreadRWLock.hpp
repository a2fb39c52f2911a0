#ifndef QBLCORE_THREADS_QBLTHREADRWLOCK_HPP
#define QBLCORE_THREADS_QBLTHREADRWLOCK_HPP

#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLThreadRWLockableResource.hpp"
#include "QBLCore/Threads/QBLTimeout.hpp"

struct TavRWLock;

/// A lock that one writer or any number of readers hold. Writers go first: while a writer waits,
/// new readers wait too. A reader must therefore not lock it again.
///
/// An operation that the thread layer refuses throws QBLThreadResourceError with a text that
/// names the operation.
///
/// Threads: any thread may call any operation; the lock must outlive every call.
class QBL_API QBL_CAPABILITY("read-write lock") QBLThreadRWLock
    : public QBLThreadRWLockableResource {
public:
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError
    QBLThreadRWLock();
    ~QBLThreadRWLock() override;

    /// Locks as the writer.
    void lock() override QBL_ACQUIRE();
    /// Releases the lock of the writer or of one reader.
    void unlock() override QBL_RELEASE_GENERIC();
    void readLock() override QBL_ACQUIRE_SHARED();

    /// @return false if any thread holds the lock.
    [[nodiscard]] bool tryLock() QBL_TRY_ACQUIRE(true);
    /// @return false if a writer holds the lock or waits for it.
    [[nodiscard]] bool tryReadLock() QBL_TRY_ACQUIRE_SHARED(true);
    /// If the lock becomes free and another thread takes it first, the full timeout starts again.
    /// @return false if the time ran out.
    [[nodiscard]] bool timedLock(unsigned long ms) QBL_TRY_ACQUIRE(true);
    [[nodiscard]] bool timedLock(QBLMilliseconds time)
        QBL_TRY_ACQUIRE(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return timedLock(time.count());
    }
    /// Works as timedLock(), but locks as a reader.
    [[nodiscard]] bool timedReadLock(unsigned long ms) QBL_TRY_ACQUIRE_SHARED(true);
    [[nodiscard]] bool timedReadLock(QBLMilliseconds time)
        QBL_TRY_ACQUIRE_SHARED(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return timedReadLock(time.count());
    }
    /// Works as timedLock(), but the timeout never starts again and uses the monotonic clock.
    /// @return false if the time ran out.
    [[nodiscard]] bool boundedLock(unsigned long ms) QBL_TRY_ACQUIRE(true);
    [[nodiscard]] bool boundedLock(QBLMilliseconds time)
        QBL_TRY_ACQUIRE(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return boundedLock(time.count());
    }
    /// Works as boundedLock(), but locks as a reader.
    [[nodiscard]] bool boundedReadLock(unsigned long ms) QBL_TRY_ACQUIRE_SHARED(true);
    [[nodiscard]] bool boundedReadLock(QBLMilliseconds time)
        QBL_TRY_ACQUIRE_SHARED(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return boundedReadLock(time.count());
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

    /// @name SharedLockable and SharedTimedLockable of the standard
    /// tryReadLock() and boundedReadLock() under the standard's names, for std::shared_lock.
    /// @{

    [[nodiscard]] bool try_lock_shared()
        QBL_TRY_ACQUIRE_SHARED(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return tryReadLock();
    }
    [[nodiscard]] bool try_lock_shared_for(QBLMilliseconds time)
        QBL_TRY_ACQUIRE_SHARED(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return boundedReadLock(time.count());
    }
    template <class TimePoint>
    [[nodiscard]] bool try_lock_shared_until(const TimePoint& end)
        QBL_TRY_ACQUIRE_SHARED(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return qblAttemptUntil(end,
                               [this](QBLMilliseconds left) { return try_lock_shared_for(left); });
    }
    /// @}

private:
    TavRWLock* m_pLock;
};

#endif
