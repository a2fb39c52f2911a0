#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"

#include <atomic>
#include <new>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/ThreadPools/internal/QBLTaskRun.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"

namespace {

const char kStopped[] = "QBLThreadPoolFixed::execute: attempted to execute while shutting down";
const char kWorker[] = "QBLThreadPoolFixed::WorkerThread::WorkerThread";

}  // namespace

class QBLThreadPoolFixed::WorkerThread : public QBLThread {
public:
    explicit WorkerThread(QBLThreadPoolFixed& pool) try
        : QBLThread(nullptr, kPoolStackSize), m_pool(pool), m_handOff(0) {
        if (m_pool.getStopWork() == 0) start();
    } catch (QBLThrowable& e) {
        QBL_RETHROW_NAMED(e, kWorker);
    }
    ~WorkerThread() override {
        wake();
        qblJoinWorker(*this);
        takeTask();  // handed over between the flag's being set and its being seen
    }

    /// Requires: the worker came out of the idle queue.
    void process(QBLThreadRunnable* task) {
        m_task.store(task, std::memory_order_relaxed);
        m_handOff.post();
    }

    void run() override {
        while (m_pool.getStopWork() == 0) {
            if (!offer()) continue;
            if (m_pool.getStopWork() != 0) break;
            if (m_handOff.boundedWait(QBLWaitForever)) takeTask();
        }
        takeTask();
    }

    /// Makes a waiting worker look at the flag.
    void wake() { m_handOff.post(); }

private:
    // The worker that was busy last is taken first: it is more likely still awake, and its data
    // in a cache. False when memory for the place in the queue was short: to be tried again.
    bool offer() {
        WorkerThread* self = this;
        try {
            return m_pool.m_idle.putFirst(self, QBLWaitForever);
        } catch (const std::bad_alloc&) {
            QBLThread::sleep(10);
            return false;
        }
    }

    // Accepted is run.
    void takeTask() { qblRunTask(m_task.exchange(nullptr, std::memory_order_acquire)); }

    QBLThreadPoolFixed& m_pool;
    // The queue from the pool to this worker. It needs but one place, as the worker is handed a
    // task only when it is idle; so handing over can neither fail nor wait.
    std::atomic<QBLThreadRunnable*> m_task{nullptr};
    QBLThreadSemaphore m_handOff;  // posted once per task, and to wake the worker
};

QBLThreadPoolFixed::QBLThreadPoolFixed(unsigned long workers) {
    try {
        for (unsigned long i = 0; i < workers; ++i) {
            m_workers.push_back(nullptr);  // first its place: a running worker must have one
            m_workers.back() = new WorkerThread(*this);
        }
    } catch (...) {
        stop();
        qblRethrowTranslated(QBL_HERE);
    }
}

QBLThreadPoolFixed::~QBLThreadPoolFixed() { stop(); }

int QBLThreadPoolFixed::execute(QBLThreadRunnable* task, unsigned long timeout) {
    if (getStopWork() != 0) QBL_THROW(QBLIllegalStateError(0, kStopped));
    QBL_ALLOC_TRY
    WorkerThread* worker = nullptr;
    if (!m_idle.get(worker, timeout) || worker == nullptr) return 0;
    worker->process(task);
    return 1;
    QBL_ALLOC_CATCH
}

void QBLThreadPoolFixed::stop() {
    setStopWork(1);
    for (WorkerThread* worker : m_workers) {
        if (worker != nullptr) worker->wake();
    }
    while (!m_workers.empty()) {
        delete m_workers.back();
        m_workers.pop_back();
    }
}
