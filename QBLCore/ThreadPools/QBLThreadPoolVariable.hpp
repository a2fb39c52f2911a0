#ifndef QBLCORE_THREADPOOLS_QBLTHREADPOOLVARIABLE_HPP
#define QBLCORE_THREADPOOLS_QBLTHREADPOOLVARIABLE_HPP

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"
#include "QBLCore/ThreadPools/QBLThreadPool.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"

/// Workers as they are needed: a task that finds no worker free gets a new one. The first ones
/// stay for the pool's life, the others end when they have been idle for a while.
///
/// The number of workers has no upper bound, deliberately: a burst of tasks can make one per
/// task. Every accepted task is run, also when the pool is destroyed meanwhile. A worker has a
/// stack of 4,096,000 bytes, or of the system's default where that is larger.
///
/// Threads: as QBLThreadPool.
class QBL_API QBLThreadPoolVariable : public QBLThreadPool {
public:
    /// Starts no thread yet.
    /// @param permanentWorkers  how many workers stay
    /// @param defaultTimeout  ms, for execute() with a timeout of 0
    /// @param idleTimeout  ms without a task after which one of the other workers ends
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError
    QBLThreadPoolVariable(unsigned long permanentWorkers, unsigned long defaultTimeout,
                          unsigned long idleTimeout);
    /// Waits for the tasks that were accepted.
    ~QBLThreadPoolVariable() override;

    /// @param task  null is accepted and does nothing
    /// @param timeout  of no effect in practice: the queue has no bound
    /// @throws QBLIllegalStateError once the stop-work flag is set; QBLOutOfMemoryError or
    ///     QBLThreadResourceError when there is no worker and none can be made. The task was
    ///     then not accepted.
    int execute(QBLThreadRunnable* task, unsigned long timeout = 0) override;

    /// A snapshot of the number of live workers.
    unsigned long getWorkerCount() const;

private:
    class WorkerThread;

    bool submit(QBLThreadRunnable* task, unsigned long timeout);
    bool outnumbered() const;
    bool needsWorker() const;
    void addWorker();
    void replaceWorker();
    bool leave(WorkerThread& worker, bool mayStay);
    void buryLost();
    void reap(bool all);

    std::atomic<unsigned int> m_workerCount;  // changes under m_mutex only
    std::atomic<unsigned int> m_taskCount;    // queued tasks minus woken workers; under m_mutex too
    const unsigned long m_defaultTimeout;
    const unsigned long m_idleTimeout;
    const unsigned long m_permanentWorkers;
    QBLSentinelQueue<QBLThreadRunnable*> m_tasks;
    QBLList<WorkerThread*> m_dead;  // ended or about to; guarded by m_mutex
    mutable QBLThreadMutex m_mutex;
    QBLList<WorkerThread*> m_living;      // one element per worker counted; guarded by m_mutex
    std::atomic<bool> m_someDead{false};  // changes under m_mutex only
};

#endif
