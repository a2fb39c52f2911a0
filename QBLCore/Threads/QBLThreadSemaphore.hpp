#ifndef QBLCORE_THREADS_QBLTHREADSEMAPHORE_HPP
#define QBLCORE_THREADS_QBLTHREADSEMAPHORE_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLTimeout.hpp"

struct TavSemaphore;

/// A counter. A wait lowers the count by 1, and blocks while the count is 0. A post raises the
/// count.
///
/// An operation that the thread layer refuses throws QBLThreadResourceError with a text that
/// names the operation.
///
/// Threads: any thread may call any operation except initialize(); the semaphore must outlive every
/// call.
class QBL_API QBLThreadSemaphore {
public:
    /// @param initial  the initial count, at most SEM_VALUE_MAX
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError
    explicit QBLThreadSemaphore(unsigned long initial = 0);
    virtual ~QBLThreadSemaphore();
    QBLThreadSemaphore(const QBLThreadSemaphore&) = delete;
    QBLThreadSemaphore& operator=(const QBLThreadSemaphore&) = delete;

    /// Replaces the semaphore by a new one. On failure the semaphore does not change.
    /// Requires: no other thread uses the semaphore at the same time.
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError, with the constructor's texts
    void initialize(unsigned long initial);

    void wait();
    /// @return false if the count is 0.
    [[nodiscard]] bool tryWait();
    /// Tries about every 100 ms, but does not try again after the last wait. It therefore notices a
    /// post late, and misses a post during the last wait. Below 100 ms it tries only once. From
    /// 100 ms on, a failure may take up to twice the timeout.
    /// @return false if the time ran out.
    [[nodiscard]] bool timedWait(unsigned long ms);
    [[nodiscard]] bool timedWait(QBLMilliseconds time) { return timedWait(time.count()); }
    /// Wakes up as soon as there is a post. Measures the timeout on the monotonic clock.
    /// @return false if the time ran out.
    [[nodiscard]] bool boundedWait(unsigned long ms);
    [[nodiscard]] bool boundedWait(QBLMilliseconds time) { return boundedWait(time.count()); }
    /// Raises the count by n. Does nothing if n is below 1.
    void post(int n = 1);

private:
    template <class T>
    friend class QBLSentinelQueue;

    // For an owner that has a mutex and holds it during these operations, except isReady() and the
    // wait. The owner calls no other operations. TavSemaphoreRecord.hpp explains them.
    void offer();
    [[nodiscard]] bool claim();
    [[nodiscard]] bool claimOrEnlist();
    [[nodiscard]] bool delist();
    [[nodiscard]] bool isReady() const;

    TavSemaphore* m_pSemaphore;
};

#endif
