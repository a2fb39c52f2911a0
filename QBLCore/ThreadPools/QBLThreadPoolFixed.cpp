#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"

#include <atomic>
#include <new>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/ThreadPools/internal/QBLPoolWorker.hpp"
#include "QBLCore/ThreadPools/internal/QBLTaskRun.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"
#include "QBLCore/Threads/shared/QBLLayerResult.hpp"

// At any time, a worker is in the idle queue, or a thread has just taken it out of the queue, or
// the worker runs a task.
//
// 1. A worker that was put into the idle queue ends only after it has taken itself out again, or
//    after a task or a null was handed to it. No task is therefore handed to a worker that has
//    ended.
// 2. A thread that takes a worker out of the queue hands it exactly one task or null. No worker
//    therefore waits forever, and a destructor that joins the worker returns.
// 3. A worker puts itself into the queue, then reads the stop-work flag. A thread that stops the
//    pool sets the flag, then empties the queue. Each worker is therefore taken out or sees the
//    flag.
// 4. A null in the idle queue wakes a submitter after the stop. Before this submitter throws, it
//    puts the null back for the next submitter.
// 5. A task may end the worker's thread. QBLPoolWorker then starts another thread, which puts the
//    worker into the queue, as after any task (serve(true)).
//
// Memory order: in rule 3 each side writes one variable, then reads the other one. The flag is
// sequentially consistent, and the queue's mutex changes by locked instructions, which are full
// barriers on x86. m_pTask needs no such order: only the thread that took the worker out stores it,
// and m_handOff publishes it. m_workers changes only while the pool is constructed and destroyed.
//
// A mistake here would lose a task or never join a worker. Tests of QBLThreadPoolTest that detect
// it: .DestructorRunsEveryAcceptedTask, .WorkerGetsANewThreadWhenATaskEndsItsThread,
// .StopFlagWakesWaitingSubmittersAndLosesNoTask; also the row QBLThreadPoolFixed.make of
// tests/faults.

namespace {

const char kStopped[] = "QBLThreadPoolFixed::execute: attempted to execute while shutting down";
const char kWorker[] = "QBLThreadPoolFixed::WorkerThread::WorkerThread";

}  // namespace

class QBLThreadPoolFixed::WorkerThread : public QBLPoolWorker {
public:
    explicit WorkerThread(QBLThreadPoolFixed& pool) try
        : QBLPoolWorker(kPoolStackSize), m_pool(pool), m_handOff(0) {
        if (m_pool.getStopWork() == 0) begin();
    } catch (QBLThrowable& e) {
        QBL_RETHROW_NAMED(e, kWorker);
    }
    /// Requires: the worker was handed null, or takes itself out of the idle queue.
    ~WorkerThread() override { close(); }

    /// Requires: the worker is not in the idle queue, and nothing was handed to it since it left
    /// the queue.
    void process(QBLThreadRunnable* task) {
        m_pTask.store(task, std::memory_order_relaxed);
        m_handOff.post();
    }

    /// Puts the worker at the front of the idle queue: the worker that was busy last is most likely
    /// still awake, with its data in a cache.
    void beIdle() {
        WorkerThread* self = this;
        static_cast<void>(m_pool.m_idle.putFirst(self, QBLWaitForever));
    }

private:
    void serve(bool again) override {
        // The constructor of the pool makes the worker idle the first time.
        if (again && !goOn()) return;
        do {
            awaitHandOff();
            qblRunTask(m_pTask.exchange(nullptr, std::memory_order_acquire));
        } while (goOn());
    }

    void awaitHandOff() {
        const QBLNoCancel noCancel;
        while (!m_handOff.boundedWait(QBLWaitForever)) {
        }
    }

    bool goOn() { return m_pool.getStopWork() == 0 && offer(); }

    /// @return false if the worker must end.
    bool offer() {
        for (;;) {
            try {
                beIdle();
                return m_pool.getStopWork() == 0 || !m_pool.m_idle.withdraw(this);
            } catch (const std::bad_alloc&) {  // no memory for an entry in the queue
                const QBLNoCancel noCancel;
                QBLThread::sleep(10);
                if (m_pool.getStopWork() != 0) return false;
            }
        }
    }

    QBLThreadPoolFixed& m_pool;
    // The hand-over from the pool to this worker. One variable is enough, because the pool hands a
    // task only to an idle worker. The hand-over therefore cannot fail and never waits.
    std::atomic<QBLThreadRunnable*> m_pTask{nullptr};
    QBLThreadSemaphore m_handOff;
};

QBLThreadPoolFixed::QBLThreadPoolFixed(unsigned long workers) {
    unsigned int idle = 0;
    try {
        for (unsigned long i = 0; i < workers; ++i) {
            m_workers.push_back(nullptr);
            m_workers.back() = new WorkerThread(*this);
        }
        for (WorkerThread* worker : m_workers) {
            if (!worker->waitUntilBegun()) qblThrow<QBLOutOfMemoryError>(QBL_HERE, nullptr);
            worker->beIdle();
            ++idle;
        }
    } catch (...) {
        for (WorkerThread* worker : m_workers) {
            if (idle != 0)
                --idle;
            else if (worker != nullptr)
                worker->process(nullptr);
        }
        stop();
        qblRethrowTranslated(QBL_HERE);
    }
}

QBLThreadPoolFixed::~QBLThreadPoolFixed() {
    const QBLNoCancel noCancel;
    stop();
}

int QBLThreadPoolFixed::execute(QBLThreadRunnable* task, unsigned long timeout) {
    WorkerThread* worker = nullptr;
    bool got = false;
    QBL_ALLOC_TRY
    if (getStopWork() == 0) {
        do got = m_idle.get(worker, timeout);
        while (got && worker == nullptr && getStopWork() == 0);
    }
    QBL_ALLOC_CATCH
    const bool stopped = getStopWork() != 0;
    if (worker != nullptr)
        worker->process(stopped ? nullptr : task);
    else if (got)
        wakeSubmitters();
    if (stopped) qblThrow<QBLIllegalStateError>(QBL_HERE, kStopped);
    return worker != nullptr ? 1 : 0;
}

// One null is enough: see rule 4.
void QBLThreadPoolFixed::wakeSubmitters() { m_idle.wake(); }

void QBLThreadPoolFixed::stop() {
    setStopWork(1);
    WorkerThread* worker = nullptr;
    while (m_idle.get(worker, 0) && worker != nullptr) worker->process(nullptr);
    wakeSubmitters();
    while (!m_workers.empty()) {
        delete m_workers.back();
        m_workers.pop_back();
    }
}
