#ifndef QBLCORE_THREADS_QBLTHREADGUARD_HPP
#define QBLCORE_THREADS_QBLTHREADGUARD_HPP

#include "QBLCore/Threads/QBLThreadLockableResource.hpp"

/// Holds a lock from construction to the end of the scope, however the scope ends. Drops an error
/// of unlock(), because a destructor cannot report it.
///
/// Threads: a guard belongs to the thread that made it, which holds the lock.
///
///     QBLThreadGuard guard(m_mutex);
class QBL_SCOPED_CAPABILITY QBLThreadGuard {
public:
    explicit QBLThreadGuard(QBLThreadLockableResource& resource) QBL_ACQUIRE(resource)
        : m_resource(resource) {
        m_resource.lock();
    }
    ~QBLThreadGuard() QBL_RELEASE() {
        try {
            m_resource.unlock();
        } catch (...) {
        }
    }
    QBLThreadGuard(const QBLThreadGuard&) = delete;
    QBLThreadGuard& operator=(const QBLThreadGuard&) = delete;

private:
    QBLThreadLockableResource& m_resource;
};

#endif
