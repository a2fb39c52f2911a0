#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/ThreadPools/internal/QBLTaskRun.hpp"

namespace {

const char kStopped[] = "QBLThreadPoolQueued::execute: attempted to execute while shutting down";

class Nothing : public QBLThreadRunnable {
public:
    void run() override {}
};

/// How long an idle worker waits before it looks at the stop-work flag by itself, in ms.
const unsigned long kPollInterval = 10000;

}  // namespace

class QBLThreadPoolQueued::WorkerThread : public QBLThread {
public:
    WorkerThread(QBLThreadPoolQueued& pool, unsigned long stackSize)
        : QBLThread(nullptr, stackSize), m_pool(pool) {
        start();
    }
    ~WorkerThread() override { qblJoinWorker(*this); }

    void run() override {
        for (;;) {
            QBLThreadRunnable* task = nullptr;
            const bool got = m_pool.m_tasks.get(task, kPollInterval) && task != nullptr;
            // A task taken after the stop is deliberately dropped when queued work is not to
            // be finished. Nulls come out of the queue after all tasks.
            if (m_pool.getStopWork() != 0 && (!got || m_pool.m_iFinishQueuedWork == 0)) return;
            qblRunTask(task);
        }
    }

private:
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
            m_workers.push_back(nullptr);  // first its place: a running worker must have one
            m_workers.back() = new WorkerThread(*this, stackSize);
        }
    } catch (...) {
        stop();
        qblRethrowTranslated(QBL_HERE);
    }
}

QBLThreadPoolQueued::~QBLThreadPoolQueued() { stop(); }

int QBLThreadPoolQueued::execute(QBLThreadRunnable* task, unsigned long timeout) {
    if (getStopWork() != 0) QBL_THROW(QBLIllegalStateError(0, kStopped));
    static Nothing nothing;
    if (task == nullptr) task = &nothing;  // takes its place in the queue like any other
    QBL_ALLOC_TRY
    return m_tasks.put(task, timeout) ? 1 : 0;
    QBL_ALLOC_CATCH
}

// A worker that waits is woken by a null of its own, so that destruction takes as long as the
// work and not a poll.
void QBLThreadPoolQueued::stop() {
    setStopWork(1);
    for (unsigned int i = m_workers.size(); i != 0; --i) m_tasks.wake();
    while (!m_workers.empty()) {
        delete m_workers.front();
        m_workers.pop_front();
    }
}
