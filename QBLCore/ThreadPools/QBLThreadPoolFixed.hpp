#ifndef QBLCORE_THREADPOOLS_QBLTHREADPOOLFIXED_HPP
#define QBLCORE_THREADPOOLS_QBLTHREADPOOLFIXED_HPP

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"
#include "QBLCore/ThreadPools/QBLThreadPool.hpp"

/// A fixed number of workers that never queues: a task goes to a worker known to be idle, or
/// is refused. Every accepted task is run, also when the pool is destroyed meanwhile.
///
/// Threads: as QBLThreadPool.
class QBL_API QBLThreadPoolFixed : public QBLThreadPool {
public:
    /// Returns when all workers are idle.
    /// @param workers  their number; each has a stack of 4,096,000 bytes, or of the system's
    ///     default where that is larger
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError; no thread is left behind
    explicit QBLThreadPoolFixed(unsigned long workers);
    /// Waits for the tasks being run.
    ~QBLThreadPoolFixed() override;

    /// @param task  null only lets an idle worker look at the stop-work flag
    /// @param timeout  ms to wait for an idle worker
    /// @return 0 when no worker became idle.
    /// @throws QBLIllegalStateError once the stop-work flag is set, also while it waits;
    ///     QBLOutOfMemoryError
    int execute(QBLThreadRunnable* task, unsigned long timeout = 0) override;

private:
    friend class QBLThreadPool;
    class WorkerThread;

    void wakeSubmitters();
    void stop();

    QBLList<WorkerThread*> m_workers;
    QBLSentinelQueue<WorkerThread*> m_idle;
};

#endif
