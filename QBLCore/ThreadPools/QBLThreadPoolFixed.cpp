#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"

#include <new>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/ThreadPools/internal/QBLTaskRun.hpp"
#include "QBLCore/Threads/QBLThread.hpp"

namespace {

const char kStopped[] = "QBLThreadPoolFixed::execute: attempted to execute while shutting down";
const char kWorker[] = "QBLThreadPoolFixed::WorkerThread::WorkerThread";

}  // namespace

class QBLThreadPoolFixed::WorkerThread : public QBLThread {
public:
    explicit WorkerThread(QBLThreadPoolFixed& pool)
        : QBLThread(nullptr, kPoolStackSize), m_pool(pool) {
        if (m_pool.getStopWork() != 0) return;
        try {
            start();
        } catch (QBLThrowable& e) {
            QBL_RETHROW_NAMED(e, kWorker);
        }
    }
    ~WorkerThread() override {
        wake();
        join();
        drain();
    }

    void process(QBLThreadRunnable* task) {
        try {
            if (!m_tasks.put(task, QBLWaitForever)) m_tasks.wake();
        } catch (...) {
            m_tasks.wake();  // without a task it makes itself idle again
            throw;
        }
    }

    void run() override {
        while (m_pool.getStopWork() == 0) {
            if (!offer()) continue;
            if (m_pool.getStopWork() != 0) break;
            QBLThreadRunnable* task = nullptr;
            if (m_tasks.get(task, QBLWaitForever)) qblRunTask(task);
        }
        drain();
    }

    /// Makes a waiting worker look at the flag.
    void wake() { m_tasks.wake(); }

private:
    // False when memory for the place in the queue was short: to be tried again.
    bool offer() {
        WorkerThread* self = this;
        try {
            return m_pool.m_idle.put(self, QBLWaitForever);
        } catch (const std::bad_alloc&) {
            QBLThread::sleep(10);
            return false;
        }
    }

    // A task may have been handed over between the flag's being set and its being seen, even
    // after the thread's end; accepted is run.
    void drain() {
        QBLThreadRunnable* task = nullptr;
        while (m_tasks.get(task, 0)) qblRunTask(task);
    }

    QBLThreadPoolFixed& m_pool;
    QBLSentinelQueue<QBLThreadRunnable*> m_tasks;
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
