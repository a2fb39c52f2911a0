#ifndef QBLCORE_THREADS_QBLTHREADRWLOCKABLERESOURCE_HPP
#define QBLCORE_THREADS_QBLTHREADRWLOCKABLERESOURCE_HPP

#include "QBLCore/Threads/QBLThreadLockableResource.hpp"

/// A lockable that several readers can hold at once; lock() is the writer's. QBLThreadRWGuard
/// holds it either way for a scope.
///
/// Threads: as the derived class says.
class QBL_API QBL_CAPABILITY("read-write lock") QBLThreadRWLockableResource
    : public QBLThreadLockableResource {
public:
    ~QBLThreadRWLockableResource() override;

    /// Waits until no writer holds the lock and takes a share of it.
    virtual void readLock() QBL_ACQUIRE_SHARED() = 0;
};

#endif
