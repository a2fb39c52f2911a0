#ifndef QBLCORE_THREADS_QBLTHREADRWLOCK_HPP
#define QBLCORE_THREADS_QBLTHREADRWLOCK_HPP

#include "QBLCore/Threads/QBLThreadRWLockableResource.hpp"
#include "QBLCore/Threads/QBLTimeout.hpp"

struct TavRWLock;

/// A lock that either one writer or any number of readers hold. Writers go first: while one
/// waits, new readers wait too, so a reader must not lock again.
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

    /// Takes the lock as its writer.
    void lock() override QBL_ACQUIRE();
    /// Gives up the writer's or one reader's hold.
    void unlock() override QBL_RELEASE_GENERIC();
    void readLock() override QBL_ACQUIRE_SHARED();

    /// @return false when anybody holds the lock.
    [[nodiscard]] bool tryLock() QBL_TRY_ACQUIRE(true);
    /// @return false when a writer holds the lock or waits for it.
    [[nodiscard]] bool tryReadLock() QBL_TRY_ACQUIRE_SHARED(true);
    /// The time begins anew whenever the lock came free and was taken by another first.
    /// @return false when the time ran out.
    [[nodiscard]] bool timedLock(unsigned long ms) QBL_TRY_ACQUIRE(true);
    /// As timedLock(), for a reader's share.
    [[nodiscard]] bool timedReadLock(unsigned long ms) QBL_TRY_ACQUIRE_SHARED(true);

private:
    TavRWLock* m_pLock;
};

#endif
