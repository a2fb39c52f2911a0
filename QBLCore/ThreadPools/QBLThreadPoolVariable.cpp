#include "QBLCore/ThreadPools/QBLThreadPoolVariable.hpp"

#include <algorithm>
#include <memory>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/ThreadPools/internal/QBLTaskRun.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Utility/QBLHighResolutionTime.hpp"

namespace {

const char kStopped[] = "QBLThreadPoolVariable::execute: attempted to execute while shutting down";

const std::int64_t kPatienceNs = 50000;

}  // namespace

class QBLThreadPoolVariable::WorkerThread : public QBLThread {
public:
    WorkerThread(QBLThreadPoolVariable& pool, bool temporary)
        : QBLThread(nullptr, kPoolStackSize), m_iTemporary(temporary ? 1 : 0), m_pool(pool) {
        start();
        m_released.store(true);
    }
    ~WorkerThread() override { join(); }

    void run() override {
        // Leaves however the cycle ends: a task may end its thread.
        struct Departure {
            WorkerThread* worker;
            ~Departure() {
                if (worker != nullptr) worker->m_pool.leave(worker, false);
            }
        } departure{this};
        while (m_pool.getStopWork() == 0) {
            if (!work(idleTimeout()) && m_iTemporary != 0 && m_pool.leave(this, true)) {
                departure.worker = nullptr;
                return;
            }
            if (m_iTemporary == 0) m_pool.reap(false);
        }
        drain();
        m_pool.m_tasks.wake();  // the null that ended this one may have been another's
    }

    /// Whether the thread that made it has let go of it and its own thread has ended.
    bool isOver() const { return m_released.load() && !isAlive(); }

private:
    // One turn: false when nothing came in time.
    bool work(unsigned long timeout) {
        QBLThreadRunnable* task = nullptr;
        if (!m_pool.m_tasks.get(task, timeout)) return false;
        if (task != nullptr) perform(task);
        return true;
    }

    // Accepted is run; nulls come out of the queue after all tasks.
    void drain() {
        QBLThreadRunnable* task = nullptr;
        while (m_pool.m_tasks.get(task, 0) && task != nullptr) perform(task);
    }

    void perform(QBLThreadRunnable* task) {
        struct Done {
            QBLThreadPoolVariable& pool;
            ~Done() { pool.taskDone(); }
        } done{m_pool};
        qblRunTask(task);
    }

    // A worker that stays must not spin while it is idle.
    unsigned long idleTimeout() const {
        return m_iTemporary != 0 ? m_pool.m_idleTimeout : std::max(m_pool.m_idleTimeout, 1UL);
    }

    const int m_iTemporary;
    QBLThreadPoolVariable& m_pool;
    std::atomic<bool> m_released{false};  // last touched by the constructor's thread
};

QBLThreadPoolVariable::QBLThreadPoolVariable(unsigned long permanentWorkers,
                                             unsigned long defaultTimeout,
                                             unsigned long idleTimeout)
    : m_workerCount(0),
      m_taskCount(0),
      m_defaultTimeout(defaultTimeout),
      m_idleTimeout(idleTimeout),
      m_permanentWorkers(permanentWorkers),
      m_mutex(0) {}

QBLThreadPoolVariable::~QBLThreadPoolVariable() {
    setStopWork(1);
    for (unsigned long fed = 0; fed <= getWorkerCount(); ++fed) m_tasks.wake();
    while (getWorkerCount() != 0) QBLThread::sleep(10);
    reap(true);
}

int QBLThreadPoolVariable::execute(QBLThreadRunnable* task, unsigned long timeout) {
    if (getStopWork() != 0) QBL_THROW(QBLIllegalStateError(0, kStopped));
    if (task == nullptr) return 1;
    QBL_ALLOC_TRY {
        QBLThreadGuard guard(m_mutex);
        ++m_taskCount;
    }
    bool queued = false;
    try {
        queued = m_tasks.put(task, timeout != 0 ? timeout : m_defaultTimeout);
    } catch (...) {
        taskDone();
        throw;
    }
    if (!queued) {
        taskDone();
        return 0;
    }
    if (!needsWorker()) return 1;
    try {
        addWorker();
    } catch (...) {
        // While a worker lives the task will be run: to report a failure then would make its
        // owner free it too early.
        if (getWorkerCount() == 0 && m_tasks.withdraw(task)) {
            taskDone();
            throw;
        }
    }
    return 1;
    QBL_ALLOC_CATCH
}

// Whether tasks outnumber the workers, and still do after about the time that a new thread takes
// to come up: by then a worker may have come free, as it does when tasks are short.
bool QBLThreadPoolVariable::needsWorker() const {
    const auto outnumbered = [this] { return m_taskCount.load() > m_workerCount.load(); };
    if (!outnumbered()) return false;
    const std::int64_t end = QBLHighResolutionTime::now() + kPatienceNs;
    while (QBLHighResolutionTime::now() < end) {
        QBLThread::yield();
        if (!outnumbered()) return false;
    }
    return true;
}

unsigned long QBLThreadPoolVariable::getWorkerCount() const {
    QBLThreadGuard guard(m_mutex);
    return m_workerCount;
}

void QBLThreadPoolVariable::addWorker() {
    if (getStopWork() != 0) return;
    reap(false);
    bool temporary = false;
    {
        QBLThreadGuard guard(m_mutex);
        temporary = ++m_workerCount > m_permanentWorkers;
    }
    try {
        // Owned by itself until it leaves, then by the list of the dead.
        static_cast<void>(new WorkerThread(*this, temporary));
    } catch (...) {
        QBLThreadGuard guard(m_mutex);
        --m_workerCount;
        throw;
    }
}

// Takes a worker out of the count and into the list of the dead; after that only reap() may
// touch it. With mayStay it stays instead, returning false, when the others are too few for
// the tasks or there is no memory for the list: a task accepted in reliance on this worker
// must not be left without one.
bool QBLThreadPoolVariable::leave(WorkerThread* worker, bool mayStay) {
    for (;;) {
        try {
            QBLThreadGuard guard(m_mutex);
            if (mayStay && m_taskCount >= m_workerCount) return false;
            m_dead.push_back(worker);
            --m_workerCount;
            return true;
        } catch (const std::bad_alloc&) {
            if (mayStay) return false;
        }
        QBLThread::sleep(10);
    }
}

void QBLThreadPoolVariable::taskDone() {
    QBLThreadGuard guard(m_mutex);
    --m_taskCount;
}

// Joins and destroys dead workers; unless all are asked for, only those whose threads have
// ended, so that nobody waits for another's exit routine, nor a thread for itself. The joining
// is done without the mutex, which an exit routine may want.
void QBLThreadPoolVariable::reap(bool all) {
    for (;;) {
        std::unique_ptr<WorkerThread> dead;
        {
            QBLThreadGuard guard(m_mutex);
            for (auto it = m_dead.begin(); it != m_dead.end(); ++it) {
                if (!all && !(*it)->isOver()) continue;
                dead.reset(*it);
                m_dead.erase(it);
                break;
            }
        }
        if (dead == nullptr) return;
    }
}
