#ifndef QBLCORE_THREADS_QBLTHREADCRITICALSECTION_HPP
#define QBLCORE_THREADS_QBLTHREADCRITICALSECTION_HPP

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

protected:
    QBLThreadCriticalSection(int trackOwner, bool recursive);

    TavMutex* m_pMutex;

private:
    friend class QBLThreadConditionVariable;
};

#endif
