#include "QBLCore/ThreadPools/QBLThreadPoolVariable.hpp"

#include <algorithm>
#include <memory>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/ThreadPools/internal/QBLTaskRun.hpp"
#include "QBLCore/Threads/shared/QBLHasBegun.hpp"
#include "QBLCore/Threads/shared/QBLLayerResult.hpp"
#include "QBLCore/Utility/QBLHighResolutionTime.hpp"

// The queue, the lists, both counts and the workers' states change under m_mutex only. So the pool
// does not use the queue's own mutex and counts.
//
// The states of a worker:
//   starting  created by addWorker(). If its thread has no memory to begin, the worker is lost.
//   awake     has begun: runs a task, looks for a task, or was woken and will look for a task.
//   idle      found the queue empty, and waits to be woken. m_living contains the starting, awake
//             and idle workers. The idle workers are at its front; the worker that became idle
//             last is woken first.
//   dead      in m_dead. leave() moves an idle worker there when its idle time is over or the pool
//             stops, and moves an awake worker there when a task has ended its thread. buryLost()
//             moves a lost worker there. m_workerCount does not include dead workers.
//   gone      reap() has taken the worker out of m_dead. reap() then joins and deletes the worker
//             without the mutex.
//
// m_taskCount is the number of tasks in the queue minus the number of workers that were woken and
// have not looked into the queue yet. Putting a task adds 1. A woken worker that looks adds 1.
// Taking a task subtracts 1. Waking a worker subtracts 1. A worker that looks takes any task, even
// if another worker was woken for this task. The count may therefore be below 0.
//
// 1. While the count is above 0, no worker is idle. A thread that puts a task then wakes an idle
//    worker, and a worker becomes idle only if it finds the queue empty.
// 2. While the queue has a task, a worker is awake or a thread is in submit() or replaceWorker().
//    Only idle workers leave, and a woken worker is not idle. If a task ends a worker's thread, the
//    worker replaces itself while the count is above 0. If the count is not above 0, the woken
//    workers are enough. submit() returns only if the count is not above 0, if a worker is awake,
//    or if submit() has taken the task back.
// 3. A thread puts a task only if it sees that the stop-work flag is not set. Workers that leave at
//    a stop have therefore seen all tasks. If tasks have ended all workers, the destructor runs the
//    tasks that remain.
// 4. After the destructor has set the flag and taken the mutex once, no other thread adds workers
//    or takes dead workers. The destructor may therefore join living workers without the mutex.
//
// Memory order: the mutex orders all of this. Code that does not hold the mutex uses the counts and
// m_someDead only as hints, and checks them again under the mutex. The flag is not under the mutex.
// But if a thread has seen the flag set, each thread that takes the mutex after it also sees the
// flag set. wake() is called without the mutex, except by the destructor. The worker cannot leave
// before it gets this wake-up, because it is not idle until then.
//
// A mistake here would lose a task, or make a destructor wait forever. These tests of
// QBLThreadPoolTest would detect it, also with x64-tsan and repeated (--gtest_repeat):
// VariableLosesNoTaskWhenItsWorkersRetire, VariableSurvivesATaskThatEndsItsThread,
// VariableReapsAWorkerWhoseExitRoutineSubmits, DestructorRunsAcceptedTasksEvenIfWorkersEnd,
// StopFlagWakesWaitingSubmittersAndLosesNoTask.

namespace {

const char kStopped[] = "QBLThreadPoolVariable::execute: attempted to execute while shutting down";

const std::int64_t kPatienceNs = 50000;

// Requires: the caller holds the mutex. No other thread writes then, so no atomic addition is
// needed.
void add(std::atomic<unsigned int>& count, int n) {
    const std::int64_t before = count.load(std::memory_order_relaxed);
    count.store(static_cast<unsigned int>(before + n), std::memory_order_relaxed);
}

}  // namespace

class QBLThreadPoolVariable::WorkerThread : public QBLThread {
public:
    WorkerThread(QBLThreadPoolVariable& pool, bool temporary)
        : QBLThread(nullptr, kPoolStackSize),
          m_iTemporary(temporary ? 1 : 0),
          m_pool(pool),
          m_began(0),
          m_wake(0) {
        start();
    }
    ~WorkerThread() override { joinQuietly(); }

    void run() override {
        m_began.post();
        // A task may end its thread.
        struct Departure {
            WorkerThread* worker;
            ~Departure() {
                if (worker != nullptr) worker->depart();
            }
        } departure{this};
        while (next()) qblRunTask(m_pTask);
        departure.worker = nullptr;
    }

    bool waitUntilBegun() { return qblHasBegun(*this, m_began); }

    // Requires for the next five members: the caller holds the pool's mutex.

    /// @return null if no worker is idle; otherwise the caller must call wake() on the worker.
    static WorkerThread* takeIdle(QBLThreadPoolVariable& pool) {
        WorkerThread* worker = pool.m_living.empty() ? nullptr : pool.m_living.front();
        if (worker == nullptr || !worker->m_bIdle) return nullptr;
        worker->setIdle(false);
        add(pool.m_taskCount, -1);
        return worker;
    }
    static unsigned int countStarting(const QBLThreadPoolVariable& pool) {
        unsigned int starting = 0;
        for (const WorkerThread* worker : pool.m_living) starting += worker->m_bStarting ? 1U : 0U;
        return starting;
    }
    bool isIdle() const { return m_bIdle; }
    void setAwake() { m_bStarting = false; }
    QBLListIterator<WorkerThread*> place;  // in m_living

    void wake() { m_wake.post(); }

private:
    /// Stores the next task in m_pTask.
    /// @return false if the worker has left the pool instead.
    bool next() {
        if (m_iTemporary == 0) m_pool.reap(false);
        if (takeOrBeIdle(false)) return true;
        const QBLNoCancel noCancel;
        do {
            while (!m_wake.boundedWait(idleTimeout())) {
                m_pool.reap(false);
                const bool mayLeave = m_iTemporary != 0 || m_pool.getStopWork() != 0;
                if (mayLeave && m_pool.leave(*this, true)) return false;
            }
        } while (!takeOrBeIdle(true));
        return true;
    }

    bool takeOrBeIdle(bool woken) {
        QBLThreadGuard guard(m_pool.m_mutex);
        setAwake();
        if (woken) add(m_pool.m_taskCount, 1);
        if (m_pool.m_tasks.getUnlocked(m_pTask)) {
            add(m_pool.m_taskCount, -1);
            return true;
        }
        setIdle(true);
        return false;
    }

    void setIdle(bool idle) {
        QBLList<WorkerThread*>& living = m_pool.m_living;
        living.splice(idle ? living.begin() : living.end(), living, place);
        m_bIdle = idle;
    }

    void depart() {
        m_pool.leave(*this, false);
        m_pool.replaceWorker();
    }

    // A worker that stays must not spin while it is idle.
    unsigned long idleTimeout() const {
        if (m_pool.getStopWork() != 0) return 0;
        return m_iTemporary != 0 ? m_pool.m_idleTimeout : std::max(m_pool.m_idleTimeout, 1UL);
    }

    const int m_iTemporary;
    bool m_bStarting = true;  // guarded by the pool's mutex, like m_bIdle
    bool m_bIdle = false;
    QBLThreadRunnable* m_pTask = nullptr;  // the worker's thread alone uses it
    QBLThreadPoolVariable& m_pool;
    QBLThreadSemaphore m_began;
    QBLThreadSemaphore m_wake;
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
    const QBLNoCancel noCancel;
    setStopWork(1);
    const auto anyLiving = [this] {
        QBLThreadGuard guard(m_mutex);
        while (WorkerThread* idle = WorkerThread::takeIdle(*this)) idle->wake();
        return m_living.empty() ? nullptr : m_living.front();
    };
    const WorkerThread* ended = nullptr;
    while (WorkerThread* worker = anyLiving()) {
        if (worker == ended) buryLost();
        worker->joinQuietly();
        ended = worker;
    }
    reap(true);
    qblRunLeft([this](QBLThreadRunnable*& task) {
        QBLThreadGuard guard(m_mutex);
        return m_tasks.getUnlocked(task);
    });
}

int QBLThreadPoolVariable::execute(QBLThreadRunnable* task, unsigned long timeout) {
    if (getStopWork() != 0) qblThrow<QBLIllegalStateError>(QBL_HERE, kStopped);
    if (task == nullptr) return 1;
    bool accepted = false;
    QBL_ALLOC_TRY
    accepted = submit(task, timeout != 0 ? timeout : m_defaultTimeout);
    QBL_ALLOC_CATCH
    if (!accepted && getStopWork() != 0) qblThrow<QBLIllegalStateError>(QBL_HERE, kStopped);
    return accepted ? 1 : 0;
}

// Ignores the timeout, because the queue is unbounded and always has room.
bool QBLThreadPoolVariable::submit(QBLThreadRunnable* task, unsigned long) {
    WorkerThread* idle = nullptr;
    {
        QBLThreadGuard guard(m_mutex);
        if (getStopWork() != 0) return false;
        m_tasks.putUnlocked(task);
        add(m_taskCount, 1);
        if (outnumbered()) idle = WorkerThread::takeIdle(*this);
    }
    if (idle != nullptr) idle->wake();
    if (!needsWorker()) return true;
    // If a worker is awake, it will run the task. If submit() reported a failure in this case, the
    // owner would free the task too early.
    const auto takeBack = [this, task] {
        QBLThreadGuard guard(m_mutex);
        const bool alone = WorkerThread::countStarting(*this) == m_workerCount;
        if (!alone || !m_tasks.withdrawUnlocked(task)) return false;
        add(m_taskCount, -1);
        return true;
    };
    try {
        const QBLNoCancel noCancel;  // waits for a first worker under the mutex
        addWorker();
    } catch (...) {
        if (takeBack()) throw;
    }
    return getStopWork() == 0 || !takeBack();
}

// Returns true if the count is above 0 and there is no worker. Otherwise returns true if the count
// stays above 0 for about the time that a new thread takes to start: if tasks are short, a worker
// becomes free in this time.
bool QBLThreadPoolVariable::needsWorker() const {
    if (!outnumbered()) return false;
    if (m_workerCount == 0) return true;
    const std::int64_t end = QBLHighResolutionTime::now() + kPatienceNs;
    while (QBLHighResolutionTime::now() < end) {
        QBLThread::yield();
        if (!outnumbered()) return false;
    }
    return true;
}

bool QBLThreadPoolVariable::outnumbered() const {
    return static_cast<int>(m_taskCount.load(std::memory_order_relaxed)) > 0;
}

unsigned long QBLThreadPoolVariable::getWorkerCount() const {
    QBLThreadGuard guard(m_mutex);
    return m_workerCount;
}

// A new worker takes its task from the queue. This function waits for the worker only if no other
// worker is awake to take the task, because waiting would slow down bursts.
void QBLThreadPoolVariable::addWorker() {
    buryLost();
    reap(false);
    QBLThreadGuard guard(m_mutex);
    const unsigned int starting = WorkerThread::countStarting(*this);
    const bool alone = starting == m_workerCount;
    if (getStopWork() != 0 || !outnumbered() || (!alone && m_taskCount <= starting)) return;
    m_living.push_back(nullptr);
    std::unique_ptr<WorkerThread> worker;
    try {
        worker.reset(new WorkerThread(*this, m_workerCount >= m_permanentWorkers));
        if (alone && !worker->waitUntilBegun()) qblThrow<QBLOutOfMemoryError>(QBL_HERE, nullptr);
    } catch (...) {
        m_living.pop_back();
        throw;
    }
    if (alone) worker->setAwake();
    add(m_workerCount, 1);
    worker->place = --m_living.end();
    m_living.back() = worker.release();
}

// Runs on a worker's thread that a task has ended.
void QBLThreadPoolVariable::replaceWorker() {
    while (getStopWork() == 0 && outnumbered()) {
        tavContain([this] { addWorker(); });
        QBLThread::sleep(1);  // until the new worker looks for tasks, or memory is free
    }
}

// Moves a worker to m_dead. From then on, only reap() may access the worker. If mayStay is true and
// the worker was woken in the meantime, returns false, and the worker stays.
bool QBLThreadPoolVariable::leave(WorkerThread& worker, bool mayStay) {
    QBLThreadGuard guard(m_mutex);
    if (mayStay && !worker.isIdle()) return false;
    add(m_workerCount, -1);
    m_dead.splice(m_dead.end(), m_living, worker.place);
    m_someDead = true;
    return true;
}

// Moves lost workers to m_dead. The thread of a lost worker had no memory to begin, and ended
// without calling leave().
void QBLThreadPoolVariable::buryLost() {
    QBLThreadGuard guard(m_mutex);
    for (auto it = m_living.begin(); it != m_living.end();) {
        const auto place = it++;
        if ((*place)->isAlive()) continue;
        add(m_workerCount, -1);
        m_dead.splice(m_dead.end(), m_living, place);
        m_someDead = true;
    }
}

// Joins and destroys dead workers: all of them, or only workers whose threads have ended. In the
// second case, no thread waits for another thread's exit routine or for itself. Joins without the
// mutex, because an exit routine may need it.
void QBLThreadPoolVariable::reap(bool all) {
    while (m_someDead) {
        std::unique_ptr<WorkerThread> dead;
        QBLThreadGuard guard(m_mutex);
        if (!all && getStopWork() != 0) return;
        for (auto it = m_dead.begin(); it != m_dead.end(); ++it) {
            if (!all && (*it)->isAlive()) continue;
            dead.reset(*it);
            m_dead.erase(it);
            m_someDead = !m_dead.empty();
            break;
        }
        if (dead == nullptr) return;
    }
}
