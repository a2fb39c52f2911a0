#ifndef QBLCORE_THREADS_QBLTHREADCRITICALSECTION_HPP
#define QBLCORE_THREADS_QBLTHREADCRITICALSECTION_HPP

#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLThreadLockableResource.hpp"
#include "QBLCore/Threads/QBLTimeout.hpp"

struct TavMutex;

/// A QBLThreadMutex without timedLock(). The library uses it for its own data.
///
/// Works before the library is started and after it is stopped. An operation that the thread
/// layer refuses throws QBLThreadResourceError with a text that names the operation.
///
/// Threads: any thread may call any operation; the section must outlive every call.
class QBL_API QBL_CAPABILITY("mutex") QBLThreadCriticalSection : public QBLThreadLockableResource {
public:
    /// @param trackOwner  as for QBLThreadMutex
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError
    explicit QBLThreadCriticalSection(int trackOwner = 0);
    ~QBLThreadCriticalSection() override;

    void lock() override QBL_ACQUIRE();
    void unlock() override QBL_RELEASE();
    /// @return false if another thread holds the section.
    [[nodiscard]] bool tryLock() QBL_TRY_ACQUIRE(true);
    /// Works as QBLThreadMutex::boundedLock().
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
    QBLThreadCriticalSection(int trackOwner, bool recursive);

    TavMutex* m_pMutex;

private:
    friend class QBLThreadConditionVariable;
};

#endif
