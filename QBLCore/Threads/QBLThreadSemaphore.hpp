#ifndef QBLCORE_THREADS_QBLTHREADSEMAPHORE_HPP
#define QBLCORE_THREADS_QBLTHREADSEMAPHORE_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Threads/QBLTimeout.hpp"

struct TavSemaphore;

/// A counter that waits lower by one, blocking at 0, and posts raise.
///
/// An operation that the thread layer refuses throws QBLThreadResourceError with a text that
/// names the operation.
///
/// Threads: any thread may call any operation but initialize(); the semaphore must outlive
/// every call.
class QBL_API QBLThreadSemaphore {
public:
    /// @param initial  the count to begin with, at most SEM_VALUE_MAX
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError
    explicit QBLThreadSemaphore(unsigned long initial = 0);
    virtual ~QBLThreadSemaphore();
    QBLThreadSemaphore(const QBLThreadSemaphore&) = delete;
    QBLThreadSemaphore& operator=(const QBLThreadSemaphore&) = delete;

    /// Begins anew with a count; on failure the semaphore stays as it was.
    /// Requires: no other thread uses the semaphore meanwhile.
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError, with the constructor's texts
    void initialize(unsigned long initial);

    void wait();
    /// @return false when the count is 0.
    [[nodiscard]] bool tryWait();
    /// Looks at the count about every 100 ms, and not again after the last wait: a post is seen
    /// late, and one during that is not. A refusal takes up to twice the time for short timeouts.
    /// @return false when the time ran out first.
    [[nodiscard]] bool timedWait(unsigned long ms);
    /// Wakes as soon as a post comes and ends at the bound, measured on the monotonic clock.
    /// @return false when the time ran out first.
    [[nodiscard]] bool boundedWait(unsigned long ms);
    /// Raises the count by n; an n below 1 does nothing.
    void post(int n = 1);

private:
    TavSemaphore* m_pSemaphore;
};

#endif
