#ifndef QBLCORE_THREADS_QBLTHREADCRITICALSECTION_HPP
#define QBLCORE_THREADS_QBLTHREADCRITICALSECTION_HPP

#include "QBLCore/Threads/QBLThreadLockableResource.hpp"

struct TavMutex;

/// The plain lock of the library's own data: a QBLThreadMutex without the timed operation.
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
    /// @return false when another holder has the section.
    [[nodiscard]] bool tryLock() QBL_TRY_ACQUIRE(true);

protected:
    QBLThreadCriticalSection(int trackOwner, bool recursive);

    TavMutex* m_pMutex;

private:
    friend class QBLThreadConditionVariable;
};

#endif
