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

// Tasks are counted from before they are put until after they were run; workers from when they are
// made until they leave, under the mutex. outnumbered() compares the two without it.
//
// The states of a worker, which change under the mutex only:
//   living   in m_living and counted: addWorker() makes and starts it. Its thread waits or works.
//   dead     in m_dead, not counted. The worker itself comes here (leave()), from any point of its
//            life; one that got no memory even to begin is brought here by buryLost().
//   gone     reap() has taken it out, and joins and deletes it without the mutex. A worker that
//            reaps takes only those whose threads have ended, so never itself.
//
// 1. A submitter counts its task and then looks at the number of workers. A worker that leaves is
//    taken off their number first; only then it looks at the number of tasks, from which the task
//    that ended it is taken off at last. So one of the two sees that a worker is missing: the
//    submitter adds one, or the worker stays (idle) or replaces itself (ended by its task).
// 2. A submitter puts its task and then reads the stop-work flag; if it is set, he takes the task
//    back and throws, unless a worker has got it. At a stop a worker ends only if it saw the flag,
//    and the queue empty after that. So it has seen every task that was accepted. What is left by
//    workers that ended in their tasks the destructor runs.
// 3. A null only wakes, and comes out of the queue after all tasks. The destructor puts one more
//    than there are workers; a worker that ends its last loop puts one for another.
//
// Memory order: both sides of 1 and 2 write one thing and then read the other, so acquire and
// release would not do. The counts and the flag are sequentially consistent. The queue's semaphore
// stands for one of them in 2: it is posted by a locked instruction, a full barrier on x86. Tasks,
// and what submitters wrote before, come through the queue's mutex. m_someDead is a hint without
// the mutex; what it misses now the next reap() finds, at last the destructor's, which has had the
// mutex. m_bAtWork belongs to the worker's thread.
//
// A mistake loses a task, or a destructor waits for ever (QBLThreadPoolTest):
// VariableStrandsNoTaskWhenItsWorkersRetire, VariableSurvivesATaskThatEndsItsThread,
// VariableReapsAWorkerWhoseExitRoutineSubmits, AcceptedTasksOutliveWorkersThatEndInTheDestruction,
// TheStopFlagWakesWaitingSubmittersAndLosesNoTask; all with x64-tsan too. The moments of 1 and 2
// are short: it takes several runs (--gtest_repeat). A missing replaceWorker(), or last loop of a
// worker, mostly stays hidden, since the next submitter or the destructor makes up for it.

namespace {

const char kStopped[] = "QBLThreadPoolVariable::execute: attempted to execute while shutting down";

const std::int64_t kPatienceNs = 50000;

}  // namespace

class QBLThreadPoolVariable::WorkerThread : public QBLThread {
public:
    WorkerThread(QBLThreadPoolVariable& pool, bool temporary)
        : QBLThread(nullptr, kPoolStackSize),
          m_iTemporary(temporary ? 1 : 0),
          m_pool(pool),
          m_began(0) {
        start();
    }
    ~WorkerThread() override { joinQuietly(); }

    void run() override {
        m_began.post();
        // Leaves however the cycle ends: a task may end its thread.
        struct Departure {
            WorkerThread* worker;
            ~Departure() {
                if (worker != nullptr) worker->depart();
            }
        } departure{this};
        while (m_pool.getStopWork() == 0) {
            const bool idle = !work(idleTimeout());
            if (idle || m_iTemporary == 0) m_pool.reap(false);
            if (idle && m_iTemporary != 0 && m_pool.leave(*this, true)) {
                departure.worker = nullptr;
                return;
            }
        }
        while (work(0)) {
        }
        m_pool.m_tasks.wake();  // the null that ended this one may have been another's
    }

    bool waitUntilBegun() { return qblHasBegun(*this, m_began); }

    QBLListIterator<WorkerThread*> place;  // among the living; guarded by the pool's mutex

private:
    // One turn: false when no task came in time. Nulls come out of the queue after all tasks.
    bool work(unsigned long timeout) {
        QBLThreadRunnable* task = nullptr;
        if (!qblTakeTask(m_pool.m_tasks, task, timeout)) return false;
        if (task == nullptr) return timeout != 0;
        m_bAtWork = true;
        qblRunTask(task);
        m_bAtWork = false;
        --m_pool.m_taskCount;
        return true;
    }

    void depart() {
        m_pool.leave(*this, false);
        if (!m_bAtWork) return;
        --m_pool.m_taskCount;
        m_pool.replaceWorker();
    }

    // A worker that stays must not spin while it is idle.
    unsigned long idleTimeout() const {
        return m_iTemporary != 0 ? m_pool.m_idleTimeout : std::max(m_pool.m_idleTimeout, 1UL);
    }

    const int m_iTemporary;
    bool m_bAtWork = false;
    QBLThreadPoolVariable& m_pool;
    QBLThreadSemaphore m_began;
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
    do {
        for (unsigned long fed = 0; fed <= getWorkerCount(); ++fed) m_tasks.wake();
        while (getWorkerCount() != 0) {
            QBLThread::sleep(10);
            buryLost();
        }
        reap(true);  // an exit routine may just have added a worker
    } while (getWorkerCount() != 0);
    qblRunLeft(m_tasks);  // by a worker that ended in a task, or accepted when none could be added
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

bool QBLThreadPoolVariable::submit(QBLThreadRunnable* task, unsigned long timeout) {
    struct Count {
        std::atomic<unsigned int>& tasks;
        bool kept = false;
        ~Count() {
            if (!kept) --tasks;
        }
    } count{m_taskCount};
    ++m_taskCount;
    if (!m_tasks.put(task, timeout)) return false;
    try {
        if (needsWorker()) {
            const QBLNoCancel noCancel;  // the first worker is waited for, under the mutex
            addWorker();
        }
    } catch (...) {
        // While a worker lives the task will be run: to report a failure then would make its
        // owner free it too early.
        if (getWorkerCount() == 0 && m_tasks.withdraw(task)) throw;
    }
    count.kept = getStopWork() == 0 || !m_tasks.withdraw(task);
    return count.kept;
}

// Whether tasks outnumber the workers, and still do after about the time that a new thread takes
// to come up: by then a worker may have come free, as it does when tasks are short.
bool QBLThreadPoolVariable::needsWorker() const {
    if (!outnumbered()) return false;
    const std::int64_t end = QBLHighResolutionTime::now() + kPatienceNs;
    while (QBLHighResolutionTime::now() < end) {
        QBLThread::yield();
        if (!outnumbered()) return false;
    }
    return true;
}

bool QBLThreadPoolVariable::outnumbered() const { return m_taskCount > m_workerCount; }

unsigned long QBLThreadPoolVariable::getWorkerCount() const {
    QBLThreadGuard guard(m_mutex);
    return m_workerCount;
}

// Under the mutex as a whole, so that whoever sees a worker counted may rely on it. The only worker
// must have begun for that; others are not waited for, which would slow down bursts.
void QBLThreadPoolVariable::addWorker() {
    buryLost();
    reap(false);
    QBLThreadGuard guard(m_mutex);
    if (getStopWork() != 0 || !outnumbered()) return;
    m_living.push_back(nullptr);
    std::unique_ptr<WorkerThread> worker;
    try {
        worker.reset(new WorkerThread(*this, m_workerCount >= m_permanentWorkers));
        if (m_workerCount == 0 && !worker->waitUntilBegun())
            qblThrow<QBLOutOfMemoryError>(QBL_HERE, nullptr);
    } catch (...) {
        m_living.pop_back();
        throw;
    }
    ++m_workerCount;
    worker->place = --m_living.end();
    m_living.back() = worker.release();
}

// For the worker that a task has ended, on its thread: as long as there is no other to run what was
// accepted, it must succeed. After a stop, the destructor does it.
void QBLThreadPoolVariable::replaceWorker() {
    while (getStopWork() == 0 && outnumbered()) {
        if (tavContain([this] { addWorker(); })) return;
        QBLThread::sleep(10);
    }
}

// Moves a worker from the living to the dead; after that only reap() may touch it. With mayStay
// it stays instead, returning false, when the others are too few for the tasks: one accepted in
// reliance on this worker must not be left without. Tasks are counted before the workers are
// looked at, and here the other way round, so that one of both sides sees the other.
bool QBLThreadPoolVariable::leave(WorkerThread& worker, bool mayStay) {
    QBLThreadGuard guard(m_mutex);
    --m_workerCount;
    if (mayStay && outnumbered()) {
        ++m_workerCount;
        return false;
    }
    m_dead.splice(m_dead.end(), m_living, worker.place);
    m_someDead = true;
    return true;
}

// A thread that got no memory even to begin has left without a word.
void QBLThreadPoolVariable::buryLost() {
    QBLThreadGuard guard(m_mutex);
    for (auto it = m_living.begin(); it != m_living.end();) {
        const auto place = it++;
        if ((*place)->isAlive()) continue;
        --m_workerCount;
        m_dead.splice(m_dead.end(), m_living, place);
        m_someDead = true;
    }
}

// Joins and destroys dead workers; unless all are asked for, only those whose threads have
// ended, so that nobody waits for another's exit routine, nor a thread for itself. The joining
// is done without the mutex, which an exit routine may want.
void QBLThreadPoolVariable::reap(bool all) {
    while (m_someDead) {
        std::unique_ptr<WorkerThread> dead;
        QBLThreadGuard guard(m_mutex);
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
