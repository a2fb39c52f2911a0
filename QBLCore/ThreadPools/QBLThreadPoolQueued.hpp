#ifndef QBLCORE_THREADPOOLS_QBLTHREADPOOLQUEUED_HPP
#define QBLCORE_THREADPOOLS_QBLTHREADPOOLQUEUED_HPP

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"
#include "QBLCore/ThreadPools/QBLThreadPool.hpp"

/// A fixed number of workers over one queue, which may be bounded.
///
/// Threads: as QBLThreadPool.
class QBL_API QBLThreadPoolQueued : public QBLThreadPool {
public:
    /// @param capacity  most tasks that wait at a time; 0 means unbounded
    /// @param finishQueuedWork  what becomes of tasks that wait in the queue when the stop-work
    ///     flag is set, by setStopWork() or by the destructor. Non-zero: they are run, and
    ///     destruction waits for them. 0: from then on they are dropped without being run.
    /// @param stackSize  of each worker, in bytes; a value below the system's default, or 0, means
    ///     the default
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError; no thread is left behind
    QBLThreadPoolQueued(unsigned long workers, unsigned long capacity, int finishQueuedWork = 1,
                        unsigned long stackSize = 0);
    ~QBLThreadPoolQueued() override;

    /// @param task  null is accepted and does nothing
    /// @param timeout  ms to wait for room in the queue
    /// @return 0 when the queue stayed full.
    /// @throws QBLIllegalStateError once the stop-work flag is set, also while it waits;
    ///     QBLOutOfMemoryError
    int execute(QBLThreadRunnable* task, unsigned long timeout = 0) override;

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
