#ifndef QBLCORE_THREADPOOLS_QBLTHREADPOOLFIXED_HPP
#define QBLCORE_THREADPOOLS_QBLTHREADPOOLFIXED_HPP

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"
#include "QBLCore/ThreadPools/QBLThreadPool.hpp"

/// A pool with a fixed number of workers and without a queue. It gives a task to an idle worker, or
/// refuses the task. The pool runs every accepted task, even if the destruction of the pool begins
/// before the task runs.
///
/// Threads: as for QBLThreadPool.
class QBL_API QBLThreadPoolFixed : public QBLThreadPool {
public:
    /// Returns when all workers are idle.
    /// @param workers  number of workers. Each worker has a stack of 4,096,000 bytes, or of the
    ///     system's default size if that is larger.
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError, after all threads have ended
    explicit QBLThreadPoolFixed(unsigned long workers);
    /// Waits for the tasks that are running.
    ~QBLThreadPoolFixed() override;

    /// @param task  null only makes an idle worker check the stop-work flag
    /// @param timeout  milliseconds to wait for an idle worker
    /// @return 0 if no worker became idle.
    /// @throws QBLIllegalStateError if the stop-work flag is set before or during the wait;
    ///     QBLOutOfMemoryError
    int execute(QBLThreadRunnable* task, unsigned long timeout = 0) override;
    using QBLThreadExecuteRunnable::execute;

private:
    friend class QBLThreadPool;
    class WorkerThread;

    void wakeSubmitters();
    void stop();

    QBLList<WorkerThread*> m_workers;
    QBLSentinelQueue<WorkerThread*> m_idle;
};

#endif
