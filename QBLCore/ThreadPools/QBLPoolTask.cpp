#include "QBLCore/ThreadPools/QBLPoolTask.hpp"

#include <atomic>
#include <memory>
#include <utility>

#include "QBLCore/Base/QBLDynamicCast.hpp"
#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/shared/QBLLayerResult.hpp"
#include "TavThread/shared/TavContain.hpp"

// A pool never deletes a task and does not say which tasks it drops. Only a queued pool that does
// not finish its queue drops tasks. A task for such a pool is therefore enrolled in a list of the
// process before it is handed over. run() and a refusal take it out again. When the pool's last
// base is destroyed, all its workers have ended and its queue is gone, so no thread can run the
// tasks of this pool that are still enrolled. The destructor of the base then calls fail() of each
// of these tasks and deletes the task.
//
// m_pPool changes before the pool gets the task, and then only on the thread that runs or drops the
// task. The pool's queue publishes it.
//
// A mistake here would leak a task, or make its future wait forever. QBLSubmitTest detects it, with
// x86-asan and x64-tsan.

/// The tasks that their pools may drop.
class QBLEnrolledTasks {
public:
    QBLThreadCriticalSection lock{0};

    bool empty() const { return m_uCount.load(std::memory_order_relaxed) == 0; }
    void add(QBLPoolTask& task) QBL_REQUIRES(lock) {
        ++m_uCount;
        task.m_pNext = m_pFirst;
        if (m_pFirst != nullptr) m_pFirst->m_pPrevious = &task;
        m_pFirst = &task;
    }
    void remove(QBLPoolTask& task) QBL_REQUIRES(lock) {
        --m_uCount;
        (task.m_pPrevious != nullptr ? task.m_pPrevious->m_pNext : m_pFirst) = task.m_pNext;
        if (task.m_pNext != nullptr) task.m_pNext->m_pPrevious = task.m_pPrevious;
        task.m_pNext = task.m_pPrevious = nullptr;
    }
    /// Takes out all tasks of a pool.
    /// @return the first one; m_pNext links the others
    QBLPoolTask* takeAllOf(const QBLThreadExecuteRunnable& pool) QBL_REQUIRES(lock) {
        QBLPoolTask* taken = nullptr;
        for (QBLPoolTask* task = m_pFirst; task != nullptr;) {
            QBLPoolTask* const next = task->m_pNext;
            if (task->m_pPool == &pool) {
                remove(*task);
                task->m_pNext = taken;
                taken = task;
            }
            task = next;
        }
        return taken;
    }

private:
    QBLPoolTask* m_pFirst = nullptr;        // guarded by lock
    std::atomic<unsigned int> m_uCount{0};  // changes under lock
};

namespace {

const char kRefused[] = "qblSubmit: the pool did not accept the task";
const char kDropped[] = "qblSubmit: the pool was destroyed and dropped the task";
const char kEnded[] = "qblSubmit: the task ended its thread";

template <class Error>
std::exception_ptr makeError(const char* text) noexcept {
    try {
        qblThrow<Error>(QBL_HERE, text);
    } catch (...) {
        return std::current_exception();
    }
}

// Created when the library is loaded, so that no destructor of a pool can fail to create it.
QBLEnrolledTasks& g_enrolled = qblImmortal<QBLEnrolledTasks>();

bool mayDrop(const QBLThreadExecuteRunnable& pool) {
    const auto* queued = qblDynamicCast<const QBLThreadPoolQueued*>(&pool);
    return queued != nullptr && !queued->finishesQueuedWork();
}

}  // namespace

QBLPoolTask::~QBLPoolTask() = default;

TAV_CATCHES_UNWINDING void QBLPoolTask::run() {
    retract();
    const std::unique_ptr<QBLPoolTask> owned(this);
    std::exception_ptr error;
    try {
        work();
    } catch (abi::__forced_unwind&) {
        fail(makeError<QBLThreadResourceError>(kEnded));
        throw;
    } catch (...) {
        error = std::current_exception();
    }
    if (error != nullptr) fail(std::move(error));
}

bool QBLPoolTask::execute(QBLThreadExecuteRunnable& pool, QBLPoolTask* task,
                          unsigned long timeout) {
    std::unique_ptr<QBLPoolTask> owned(task);
    if (!task->handOver(pool, timeout)) return false;
    static_cast<void>(owned.release());
    return true;
}

TAV_CATCHES_UNWINDING void QBLPoolTask::submit(QBLThreadExecuteRunnable& pool, QBLPoolTask* task,
                                               unsigned long timeout) {
    std::unique_ptr<QBLPoolTask> owned(task);
    std::exception_ptr error;
    try {
        if (task->handOver(pool, timeout)) {
            static_cast<void>(owned.release());
            return;
        }
        error = makeError<QBLThreadResourceError>(kRefused);
    } catch (abi::__forced_unwind&) {
        task->fail(makeError<QBLThreadResourceError>(kRefused));
        throw;
    } catch (...) {
        error = std::current_exception();
    }
    task->fail(std::move(error));
}

/// If this returns true, the task may be gone.
bool QBLPoolTask::handOver(QBLThreadExecuteRunnable& pool, unsigned long timeout) {
    if (mayDrop(pool)) {
        QBLThreadGuard guard(g_enrolled.lock);
        g_enrolled.add(*this);
        m_pPool = &pool;
    }
    struct Retraction {
        QBLPoolTask* task;
        ~Retraction() {
            if (task != nullptr) task->retract();
        }
    } retraction{this};
    const bool accepted = pool.execute(this, timeout) != 0;
    if (accepted) retraction.task = nullptr;
    return accepted;
}

void QBLPoolTask::retract() noexcept {
    if (m_pPool == nullptr) return;
    QBLThreadGuard guard(g_enrolled.lock);
    g_enrolled.remove(*this);
    m_pPool = nullptr;
}

// The thread that destroys a pool knows of all calls of execute(), so it also sees their changes of
// the count. Most destructors therefore need no lock.
void QBLPoolTask::dropAllOf(const QBLThreadExecuteRunnable& pool) noexcept {
    if (g_enrolled.empty()) return;
    QBLPoolTask* task = nullptr;
    {
        QBLThreadGuard guard(g_enrolled.lock);
        task = g_enrolled.takeAllOf(pool);
    }
    while (task != nullptr) {
        const std::unique_ptr<QBLPoolTask> owned(task);
        task = task->m_pNext;
        owned->fail(makeError<QBLIllegalStateError>(kDropped));
    }
}
