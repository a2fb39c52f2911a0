#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"

#include <memory>
#include <utility>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/ThreadPools/internal/QBLIdleWorkers.hpp"
#include "QBLCore/ThreadPools/internal/QBLPoolWorker.hpp"
#include "QBLCore/ThreadPools/internal/QBLTaskRun.hpp"
#include "QBLCore/Threads/shared/QBLLayerResult.hpp"

// 1. A submitter puts its task into the queue, then reads the stop-work flag. If the flag is set,
//    the submitter takes the task back and throws, unless a worker has taken the task.
// 2. A worker reads the flag before it looks into the queue. It ends only if the flag was set and
//    the queue was empty, or if its task must be dropped. No accepted task is therefore overlooked.
// 3. A stop adds room for one task to the queue. A submitter that gets this room and sees the flag
//    gives the room back. All waiting submitters therefore get the room one after the other.
// 4. A worker that finds no task enters the stack of idle workers. After that, it checks the queue
//    and the flag again, and then waits. A submitter puts its task into the queue and then wakes a
//    worker. stop() sets the flag and then wakes all idle workers. No idle worker therefore misses
//    a task or a call of stop().
//
// Memory order: in rules 1, 2 and 4 each side writes one variable, then reads the other one. The
// flag and the size of the stack are sequentially consistent, and the queue's mutex changes by
// locked instructions, which are full barriers on x86. The queue's mutex publishes the tasks and
// what submitters wrote before. An idle worker checks the flag every ten seconds, because
// setStopWork() alone wakes only submitters.
//
// A mistake here would lose a task or keep a submitter waiting. Tests of QBLThreadPoolTest that
// detect it:
// .StopFlagWakesWaitingSubmittersAndLosesNoTask, .QueuedFinishesOrDropsQueuedTasksAsConfigured,
// .QueuedLimitsItsQueueToTheCapacity, .DestructorRunsAcceptedTasksEvenIfWorkersEnd,
// .QueuedWakesAWorkerThatIsAboutToBeIdle (only in one of several runs; use --gtest_repeat).

namespace {

const char kStopped[] = "QBLThreadPoolQueued::execute: attempted to execute while shutting down";

class Nothing : public QBLThreadRunnable {
public:
    void run() override {}
};

/// The time, in milliseconds, after which an idle worker checks the stop-work flag by itself.
const unsigned long kPollInterval = 10000;

}  // namespace

class QBLThreadPoolQueued::WorkerThread : public QBLPoolWorker {
public:
    WorkerThread(QBLThreadPoolQueued& pool, unsigned long stackSize,
                 std::shared_ptr<QBLIdleWorkers> idle)
        : QBLPoolWorker(stackSize), m_pool(pool), m_pIdle(std::move(idle)) {
        begin();
    }
    ~WorkerThread() override { close(); }

    /// Wakes one of the pool's idle workers, if there are any.
    void wakeOne() { m_pIdle->wakeOne(); }
    /// Waits until the worker has ended.
    void end() { close(); }

private:
    void serve(bool) override {
        work();
        wakeOne();  // so that another idle worker notices the flag
    }

    void work() {
        for (;;) {
            QBLThreadRunnable* task = nullptr;
            const bool stopping = m_pool.getStopWork() != 0;
            if (!m_pool.m_tasks.get(task, 0)) {
                if (stopping) return;
                task = await();
            }
            // A task taken after the stop is deliberately dropped if the pool must not finish
            // queued work.
            if (m_pool.m_iFinishQueuedWork == 0 && m_pool.getStopWork() != 0) return;
            qblRunTask(task);
        }
    }

    /// Waits for a task, and defers a cancellation, because it could swallow a wake-up.
    /// @return null if the worker must look into the queue again
    QBLThreadRunnable* await() {
        const QBLNoCancel noCancel;
        QBLThreadRunnable* task = nullptr;
        m_pIdle->waitUnless(
            m_place, [&] { return m_pool.m_tasks.get(task, 0) || m_pool.getStopWork() != 0; },
            kPollInterval);
        return task;
    }

    QBLThreadPoolQueued& m_pool;
    const std::shared_ptr<QBLIdleWorkers> m_pIdle;
    QBLIdleWorkers::Place m_place;
};

QBLThreadPoolQueued::QBLThreadPoolQueued(unsigned long workers, unsigned long capacity,
                                         int finishQueuedWork, unsigned long stackSize)
    : m_workerCount(workers),
      m_capacity(capacity),
      m_iFinishQueuedWork(finishQueuedWork),
      m_tasks(m_capacity) {
    try {
        const auto idle = std::make_shared<QBLIdleWorkers>();
        for (unsigned long i = 0; i < m_workerCount; ++i) {
            m_workers.push_back(nullptr);  // first, so that storing a running worker cannot fail
            m_workers.back() = new WorkerThread(*this, stackSize, idle);
        }
        for (WorkerThread* worker : m_workers)
            if (!worker->waitUntilBegun()) qblThrow<QBLOutOfMemoryError>(QBL_HERE, nullptr);
    } catch (...) {
        stop();
        qblRethrowTranslated(QBL_HERE);
    }
}

QBLThreadPoolQueued::~QBLThreadPoolQueued() {
    const QBLNoCancel noCancel;
    stop();
}

int QBLThreadPoolQueued::execute(QBLThreadRunnable* task, unsigned long timeout) {
    static Nothing s_nothing;
    if (task == nullptr) task = &s_nothing;  // a null also takes room in the queue
    bool accepted = false;
    QBL_ALLOC_TRY
    const bool room = getStopWork() == 0 && m_tasks.reserve(timeout);
    if (room && getStopWork() != 0) {
        m_tasks.release();
    } else if (room) {
        m_tasks.putReserved(task);
        if (!m_workers.empty()) m_workers.front()->wakeOne();
        accepted = getStopWork() == 0 || !m_tasks.withdraw(task);
    }
    QBL_ALLOC_CATCH
    if (!accepted && getStopWork() != 0) qblThrow<QBLIllegalStateError>(QBL_HERE, kStopped);
    return accepted ? 1 : 0;
}

void QBLThreadPoolQueued::wakeSubmitters() { m_tasks.release(); }

// Wakes all idle workers, so that they notice the stop at once and not only when they next poll the
// flag. Deletes the workers only after all of them have ended, because a running task may call
// execute(), which reads m_workers. If the constructor failed, m_workers has a null for the worker
// that could not be created.
void QBLThreadPoolQueued::stop() {
    setStopWork(1);
    for (WorkerThread* worker : m_workers)
        if (worker != nullptr) worker->wakeOne();
    for (WorkerThread* worker : m_workers)
        if (worker != nullptr) worker->end();
    while (!m_workers.empty()) {
        delete m_workers.front();
        m_workers.pop_front();
    }
    if (m_iFinishQueuedWork != 0)  // tasks remain if tasks have ended the threads of all workers
        qblRunLeft([this](QBLThreadRunnable*& task) { return m_tasks.get(task, 0); });
}
