#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/ThreadPools/internal/QBLPoolWorker.hpp"
#include "QBLCore/ThreadPools/internal/QBLTaskRun.hpp"
#include "QBLCore/Threads/shared/QBLLayerResult.hpp"

// 1. A submitter puts its task into the queue, then reads the stop-work flag. If the flag is set,
//    the submitter takes the task back and throws, unless a worker has taken the task.
// 2. A worker reads the flag before it looks into the queue. It ends only if the flag was set and
//    the queue was empty, or if its task must be dropped. No accepted task is therefore overlooked.
// 3. A stop adds room for one task to the queue. A submitter that gets this room and sees the flag
//    gives the room back. All waiting submitters therefore get the room one after the other.
// 4. A null comes out of the queue after all tasks, and wakes a worker to check the flag. A stop
//    puts a null for each worker, and a worker that ends puts a null for another worker.
//
// Memory order: in rules 1 and 2 each side writes one variable, then reads the other one. The flag
// is sequentially consistent, and the queue's semaphore changes by locked instructions, which are
// full barriers on x86. The queue's mutex publishes the tasks and what submitters wrote before. An
// idle worker checks the flag every ten seconds, because setStopWork() alone wakes only submitters.
//
// A mistake here would lose a task or keep a submitter waiting. Tests of QBLThreadPoolTest that
// detect it:
// .StopFlagWakesWaitingSubmittersAndLosesNoTask, .QueuedFinishesOrDropsQueuedTasksAsConfigured,
// .QueuedLimitsItsQueueToTheCapacity, .DestructorRunsAcceptedTasksEvenIfWorkersEnd.

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
    WorkerThread(QBLThreadPoolQueued& pool, unsigned long stackSize)
        : QBLPoolWorker(stackSize), m_pool(pool) {
        begin();
    }
    ~WorkerThread() override { close(); }

private:
    void serve(bool) override {
        work();
        m_pool.m_tasks.wake();  // the null that ended this worker may be for another worker
    }

    void work() {
        for (;;) {
            const bool stopping = m_pool.getStopWork() != 0;
            QBLThreadRunnable* task = nullptr;
            const bool got =
                qblTakeTask(m_pool.m_tasks, task, stopping ? 0 : kPollInterval) && task != nullptr;
            if (stopping && !got) return;
            // A task taken after the stop is deliberately dropped if the pool must not finish
            // queued work. Nulls come out of the queue after all tasks.
            if (m_pool.m_iFinishQueuedWork == 0 && m_pool.getStopWork() != 0) return;
            qblRunTask(task);
        }
    }

    QBLThreadPoolQueued& m_pool;
};

QBLThreadPoolQueued::QBLThreadPoolQueued(unsigned long workers, unsigned long capacity,
                                         int finishQueuedWork, unsigned long stackSize)
    : m_workerCount(workers),
      m_capacity(capacity),
      m_iFinishQueuedWork(finishQueuedWork),
      m_tasks(m_capacity) {
    try {
        for (unsigned long i = 0; i < m_workerCount; ++i) {
            m_workers.push_back(nullptr);  // first, so that storing a running worker cannot fail
            m_workers.back() = new WorkerThread(*this, stackSize);
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
        accepted = getStopWork() == 0 || !m_tasks.withdraw(task);
    }
    QBL_ALLOC_CATCH
    if (!accepted && getStopWork() != 0) qblThrow<QBLIllegalStateError>(QBL_HERE, kStopped);
    return accepted ? 1 : 0;
}

void QBLThreadPoolQueued::wakeSubmitters() { m_tasks.release(); }

// Puts a null for each worker. Waiting workers then notice the stop at once, not only when they
// next poll the flag.
void QBLThreadPoolQueued::stop() {
    setStopWork(1);
    for (unsigned int i = m_workers.size(); i != 0; --i) m_tasks.wake();
    while (!m_workers.empty()) {
        delete m_workers.front();
        m_workers.pop_front();
    }
    if (m_iFinishQueuedWork != 0) qblRunLeft(m_tasks);  // remain if tasks ended the workers
}
