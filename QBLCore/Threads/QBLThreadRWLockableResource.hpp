#ifndef QBLCORE_THREADS_QBLTHREADRWLOCKABLERESOURCE_HPP
#define QBLCORE_THREADS_QBLTHREADRWLOCKABLERESOURCE_HPP

#include "QBLCore/Threads/QBLThreadLockableResource.hpp"

/// A lock that several readers can hold at the same time. lock() locks as the writer.
/// QBLThreadRWGuard holds it for a scope as the writer or as a reader.
///
/// Threads: see the derived class.
class QBL_API QBL_CAPABILITY("read-write lock") QBLThreadRWLockableResource
    : public QBLThreadLockableResource {
public:
    ~QBLThreadRWLockableResource() override;

    /// Waits until no writer holds the lock, and locks as a reader.
    virtual void readLock() QBL_ACQUIRE_SHARED() = 0;

    /// readLock() under the standard's name, for std::shared_lock.
    void lock_shared() QBL_ACQUIRE_SHARED() QBL_NO_THREAD_SAFETY_ANALYSIS { readLock(); }
    /// unlock() under the standard's name.
    void unlock_shared() QBL_RELEASE_GENERIC() QBL_NO_THREAD_SAFETY_ANALYSIS { unlock(); }
};

#endif
