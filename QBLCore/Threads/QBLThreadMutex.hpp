#ifndef QBLCORE_THREADS_QBLTHREADMUTEX_HPP
#define QBLCORE_THREADS_QBLTHREADMUTEX_HPP

#include "QBLCore/Threads/QBLThreadLockableResource.hpp"
#include "QBLCore/Threads/QBLTimeout.hpp"

struct TavMutex;

/// A mutex that one thread at a time holds and that its holder must not lock again.
///
/// Works before the library is started and after it is stopped. An operation that the thread
/// layer refuses throws QBLThreadResourceError with a text that names the operation.
///
/// Threads: any thread may call any operation; the mutex must outlive every call.
class QBL_API QBL_CAPABILITY("mutex") QBLThreadMutex : public QBLThreadLockableResource {
public:
    /// @param trackOwner  non-zero keeps for each holder its thread and the place that locked,
    ///     for debuggers. It costs time, and a thread that the library cannot give a record to
    ///     gets QBLThreadResourceError from lock(), with the mutex locked all the same.
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError
    explicit QBLThreadMutex(int trackOwner = 0);
    ~QBLThreadMutex() override;

    void lock() override QBL_ACQUIRE();
    void unlock() override QBL_RELEASE();
    /// @return false when another holder has the mutex.
    [[nodiscard]] bool tryLock() QBL_TRY_ACQUIRE(true);
    /// Looks at the mutex about every 100 ms, and not again after the last wait: one that comes
    /// free during that is not seen. A refusal takes up to twice the time for short timeouts.
    /// @return false when the time ran out first.
    [[nodiscard]] bool timedLock(unsigned long ms) QBL_TRY_ACQUIRE(true);

protected:
    QBLThreadMutex(int trackOwner, bool recursive);

    TavMutex* m_pMutex;

private:
    friend class QBLThreadConditionVariable;
};

#endif
