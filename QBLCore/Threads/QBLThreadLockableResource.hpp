#ifndef QBLCORE_THREADS_QBLTHREADLOCKABLERESOURCE_HPP
#define QBLCORE_THREADS_QBLTHREADLOCKABLERESOURCE_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Threads/QBLThreadAnnotations.hpp"

/// A lock that one thread at a time can hold. QBLThreadGuard holds it for a scope.
///
/// Threads: see the derived class.
class QBL_API QBL_CAPABILITY("lock") QBLThreadLockableResource {
public:
    QBLThreadLockableResource() = default;
    QBLThreadLockableResource(const QBLThreadLockableResource&) = delete;
    QBLThreadLockableResource& operator=(const QBLThreadLockableResource&) = delete;
    virtual ~QBLThreadLockableResource();

    /// Waits until the lock is free and takes it.
    virtual void lock() QBL_ACQUIRE() = 0;
    virtual void unlock() QBL_RELEASE_GENERIC() = 0;
};

#endif
