#ifndef QBLCORE_FILELOCK_QBLFILELOCKRW_HPP
#define QBLCORE_FILELOCK_QBLFILELOCKRW_HPP

#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLThreadRWLockableResource.hpp"
#include "QBLCore/Threads/QBLTimeout.hpp"

class QBLFmFile;

/// An advisory lock on a whole file, between processes. Guards can hold it. It has the limits of
/// M_LockFile(): above all, it does not exclude threads of one process from each other.
///
/// Lock and unlock operations throw QBLAssertError if the object has no file. If the file is not
/// open, they fail as if the system refused the lock.
///
/// Threads: the lock belongs to the process; one thread at a time for each object.
///
///     QBLFileLockRW lock(file);
///     QBLThreadGuard guard(lock);  // exclusive access to the file until the end of the scope
class QBL_API QBLFileLockRW : public QBLThreadRWLockableResource {
public:
    /// @param file  not owned; open for writing for exclusive locks
    explicit QBLFileLockRW(QBLFmFile& file);
    QBLFileLockRW();
    ~QBLFileLockRW() override;

    /// Waits for an exclusive lock.
    /// @throws QBLRuntimeError with the system's reason, for example that the file is not open for
    ///     writing
    void lock() override QBL_ACQUIRE();
    /// @throws QBLRuntimeError with the system's reason
    void unlock() override QBL_RELEASE();
    /// Waits for a shared lock.
    /// @throws QBLRuntimeError with the system's reason
    void readLock() override QBL_ACQUIRE_SHARED();
    /// @return 1 if locked; 0 if another process holds the lock or the system refuses it
    [[nodiscard]] virtual int tryLock() QBL_TRY_ACQUIRE(1);
    /// @return 1 if locked; 0 if another process holds the lock or the system refuses it
    [[nodiscard]] virtual int tryReadLock();
    /// Waits for an exclusive lock for a limited time. The system cannot wait for a file lock with
    /// a limit, so this operation tries about every millisecond until the lock is free. Measures
    /// the timeout on the monotonic clock.
    /// @param ms  0 tries once, QBLWaitForever waits as lock() does.
    /// @return false if the time ran out.
    /// @throws QBLRuntimeError with the system's reason if the system refuses the lock
    [[nodiscard]] bool boundedLock(unsigned long ms) QBL_TRY_ACQUIRE(true);
    [[nodiscard]] bool boundedLock(QBLMilliseconds time)
        QBL_TRY_ACQUIRE(true) QBL_NO_THREAD_SAFETY_ANALYSIS {
        return boundedLock(time.count());
    }
    /// Works as boundedLock(), but waits for a shared lock.
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
        return tryLock() != 0;
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
        return tryReadLock() != 0;
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

    /// @name The file
    /// @{

    QBLFmFile* getFile() const;
    /// @param file  not owned; may be null. A lock on the old file stays.
    void setFile(QBLFmFile* file);
    /// @}

private:
    QBLFmFile* m_file;
};

#endif
