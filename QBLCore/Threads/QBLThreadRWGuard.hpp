#ifndef QBLCORE_THREADS_QBLTHREADRWGUARD_HPP
#define QBLCORE_THREADS_QBLTHREADRWGUARD_HPP

#include "QBLCore/Threads/QBLThreadRWLockableResource.hpp"

/// Holds a read-write lock for a scope, as the writer or as a reader. Drops an error of unlock(),
/// as QBLThreadGuard does.
///
/// Threads: a guard belongs to the thread that made it, which holds the lock.
///
///     QBLThreadRWGuard guard(m_lock, 0);  // as a reader
class QBLThreadRWGuard {
public:
    /// @param write  if not 0, locks as the writer; if 0, locks as a reader
    QBLThreadRWGuard(QBLThreadRWLockableResource& resource, int write) QBL_NO_THREAD_SAFETY_ANALYSIS
        : m_resource(resource) {
        if (write != 0) {
            m_resource.lock();
        } else {
            m_resource.readLock();
        }
    }
    ~QBLThreadRWGuard() QBL_NO_THREAD_SAFETY_ANALYSIS {
        try {
            m_resource.unlock();
        } catch (...) {
        }
    }
    QBLThreadRWGuard(const QBLThreadRWGuard&) = delete;
    QBLThreadRWGuard& operator=(const QBLThreadRWGuard&) = delete;

private:
    QBLThreadRWLockableResource& m_resource;
};

#endif
