#ifndef QBLCORE_THREADPOOLS_QBLTHREADPOOLVARIABLE_HPP
#define QBLCORE_THREADPOOLS_QBLTHREADPOOLVARIABLE_HPP

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"
#include "QBLCore/ThreadPools/QBLThreadPool.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"

/// A pool that starts workers as needed: a task that finds no free worker gets a new worker. The
/// first workers stay as long as the pool exists. The other workers end after they have been idle
/// for a while.
///
/// The number of workers deliberately has no upper bound: a burst of tasks can start one worker per
/// task. The pool runs every accepted task, even if the destruction of the pool begins before the
/// task runs. A worker has a stack of 4,096,000 bytes, or of the system's default size if that is
/// larger.
///
/// Threads: as for QBLThreadPool.
class QBL_API QBLThreadPoolVariable : public QBLThreadPool {
public:
    /// Starts no thread yet.
    /// @param permanentWorkers  number of workers that stay
    /// @param defaultTimeout  milliseconds, for execute() with a timeout of 0
    /// @param idleTimeout  milliseconds after which one of the other workers ends if it gets no
    ///     task
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError
    QBLThreadPoolVariable(unsigned long permanentWorkers, unsigned long defaultTimeout,
                          unsigned long idleTimeout);
    QBLThreadPoolVariable(unsigned long permanentWorkers, QBLMilliseconds defaultTimeout,
                          QBLMilliseconds idleTimeout)
        : QBLThreadPoolVariable(permanentWorkers, defaultTimeout.count(), idleTimeout.count()) {}
    QBLThreadPoolVariable(unsigned long permanentWorkers, unsigned long defaultTimeout,
                          QBLMilliseconds idleTimeout)
        : QBLThreadPoolVariable(permanentWorkers, defaultTimeout, idleTimeout.count()) {}
    QBLThreadPoolVariable(unsigned long permanentWorkers, QBLMilliseconds defaultTimeout,
                          unsigned long idleTimeout)
        : QBLThreadPoolVariable(permanentWorkers, defaultTimeout.count(), idleTimeout) {}
    /// Waits for the accepted tasks.
    ~QBLThreadPoolVariable() override;

    /// @param task  null is accepted and does nothing
    /// @param timeout  has no effect in practice, because the queue is unbounded
    /// @throws QBLIllegalStateError if the stop-work flag is set; QBLOutOfMemoryError or
    ///     QBLThreadResourceError if there is no worker and no worker can be started. The task is
    ///     then not accepted.
    int execute(QBLThreadRunnable* task, unsigned long timeout = 0) override;
    using QBLThreadExecuteRunnable::execute;

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

    std::atomic<unsigned int>
        m_workerCount;  // changes under m_mutex: addWorker(), leave(), buryLost()
    std::atomic<unsigned int>
        m_taskCount;  // queued tasks minus woken workers; changes under m_mutex
    const unsigned long m_defaultTimeout;
    const unsigned long m_idleTimeout;
    const unsigned long m_permanentWorkers;
    QBLSentinelQueue<QBLThreadRunnable*> m_tasks;
    QBLList<WorkerThread*> m_dead;  // workers that have ended or soon will; guarded by m_mutex
    mutable QBLThreadMutex m_mutex;
    QBLList<WorkerThread*> m_living;      // one element per counted worker; guarded by m_mutex
    std::atomic<bool> m_someDead{false};  // changes under m_mutex only
};

#endif
