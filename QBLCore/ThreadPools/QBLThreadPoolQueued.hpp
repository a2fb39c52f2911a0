#ifndef QBLCORE_THREADPOOLS_QBLTHREADPOOLQUEUED_HPP
#define QBLCORE_THREADPOOLS_QBLTHREADPOOLQUEUED_HPP

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"
#include "QBLCore/ThreadPools/QBLThreadPool.hpp"

/// A pool with a fixed number of workers and one queue, which may be bounded.
///
/// Threads: as for QBLThreadPool.
class QBL_API QBLThreadPoolQueued : public QBLThreadPool {
public:
    /// @param capacity  maximum number of waiting tasks; 0 means unbounded
    /// @param finishQueuedWork  what happens to tasks in the queue when setStopWork() or the
    ///     destructor sets the stop-work flag. If it is not 0, the workers run these tasks, and the
    ///     destructor waits for them. If it is 0, these tasks are dropped and never run.
    /// @param stackSize  the stack size of each worker in bytes; 0 or a value below the system's
    ///     default means the default
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError, after all threads have ended
    QBLThreadPoolQueued(unsigned long workers, unsigned long capacity, int finishQueuedWork = 1,
                        unsigned long stackSize = 0);
    ~QBLThreadPoolQueued() override;

    /// @param task  null is accepted and does nothing
    /// @param timeout  milliseconds to wait for room in the queue
    /// @return 0 if the queue stayed full.
    /// @throws QBLIllegalStateError if the stop-work flag is set before or during the wait;
    ///     QBLOutOfMemoryError
    int execute(QBLThreadRunnable* task, unsigned long timeout = 0) override;
    using QBLThreadExecuteRunnable::execute;

    /// Returns false if a stop drops the tasks in the queue.
    bool finishesQueuedWork() const { return m_iFinishQueuedWork != 0; }

private:
    friend class QBLThreadPool;
    class WorkerThread;

    void wakeSubmitters();
    void stop();

    const unsigned long m_workerCount;
    const unsigned long m_capacity;
    const int m_iFinishQueuedWork;
    QBLList<WorkerThread*> m_workers;
    QBLSentinelQueue<QBLThreadRunnable*> m_tasks;
};

#endif
