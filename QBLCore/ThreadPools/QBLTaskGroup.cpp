#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"

#include <new>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/ThreadPools/QBLThreadExecuteRunnable.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "TavThread/internal/TavContain.hpp"

namespace {

const char kTask[] = "QBLTaskGroup::Task::run";
const char kTag[] = "QBL_THROW";

}  // namespace

QBLTaskGroup::Task::~Task() = default;

TAV_CATCHES_UNWINDING void QBLTaskGroup::Task::run() {
    // Leaves however the work ends: it may end its thread.
    struct Departure {
        Task* task;
        ~Departure() { task->m_group.leave(task); }
    } departure{this};
    try {
        work();
    } catch (abi::__forced_unwind&) {
        throw;
    } catch (...) {
        m_group.keepError();
    }
}

QBLTaskGroup::QBLTaskGroup(QBLThreadExecuteRunnable& pool)
    : m_pool(pool), m_lock(0), m_iPending(0), m_bFailed(false) {}

QBLTaskGroup::~QBLTaskGroup() {
    QBLThreadGuard guard(m_lock);
    while (m_iPending != 0) m_allDone.wait(m_lock);
}

/// Takes the task over.
void QBLTaskGroup::start(Task* task) {
    {
        QBLThreadGuard guard(m_lock);
        ++m_iPending;
    }
    int accepted = 0;
    try {
        accepted = m_pool.execute(task, 0);
    } catch (...) {
        leave(task);
        qblRethrowTranslated(QBL_HERE);
    }
    if (accepted == 0) task->run();
}

void QBLTaskGroup::wait(const QBLFileLocation& where) {
    QBLThreadGuard guard(m_lock);
    while (m_iPending != 0) m_allDone.wait(m_lock);
    if (!m_bFailed) return;
    m_bFailed = false;
    try {
        m_error.check(where, nullptr, kTag);
        QBLOutOfMemoryError(0, nullptr).hurl(where, nullptr, kTag);
    } catch (const std::bad_alloc&) {
        m_error.clear();
        qblRethrowTranslated(where);
    } catch (...) {
        m_error.clear();
        throw;
    }
}

/// The task goes first: what it holds may refer to what is there only until the wait ends. The
/// group may be gone as soon as the lock is free.
void QBLTaskGroup::leave(Task* task) noexcept {
    delete task;
    QBLThreadGuard guard(m_lock);
    if (--m_iPending == 0) m_allDone.broadcast();
}

/// Inside a handler: keeps the current exception if it is the first.
void QBLTaskGroup::keepError() {
    QBLThreadGuard guard(m_lock);
    if (m_bFailed) return;
    m_bFailed = true;
    try {
        try {
            throw;
        } catch (QBLThrowable&) {
            throw;
        } catch (...) {
            qblRethrowTranslated(QBL_HERE, kTask);
        }
    } catch (const QBLThrowable& error) {
        try {
            m_error.set(error);
        } catch (...) {
            // No memory for the copy: m_error stays empty.
        }
    }
}
