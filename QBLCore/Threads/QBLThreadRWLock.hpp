#ifndef QBLCORE_THREADS_QBLTHREADRWLOCK_HPP
#define QBLCORE_THREADS_QBLTHREADRWLOCK_HPP

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
    /// Works as timedLock(), but locks as a reader.
    [[nodiscard]] bool timedReadLock(unsigned long ms) QBL_TRY_ACQUIRE_SHARED(true);
    /// Works as timedLock(), but the timeout never starts again. Measures it on the monotonic
    /// clock.
    /// @return false if the time ran out.
    [[nodiscard]] bool boundedLock(unsigned long ms) QBL_TRY_ACQUIRE(true);
    /// Works as boundedLock(), but locks as a reader.
    [[nodiscard]] bool boundedReadLock(unsigned long ms) QBL_TRY_ACQUIRE_SHARED(true);

private:
    TavRWLock* m_pLock;
};

#endif
