#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"

#include <new>

#include "QBLCore/Base/QBLNoCancel.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/ThreadPools/QBLThreadExecuteRunnable.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/shared/QBLLayerResult.hpp"
#include "TavThread/shared/TavContain.hpp"

// A piece is pending from start() until leave(): m_iPending counts it under m_lock, and whoever
// takes the count to 0 wakes those who wait. The group may be gone from then on, so leave() touches
// nothing of it after it has given up the lock. A piece is deleted before it is counted off, since
// what it holds may refer to things that are there only until the wait ends.
//
// The pool has a piece that it accepted; performAll() on a worker runs it. One that it refused is
// run at once by start(), except within a piece of the same group: there it goes to m_pRefused, and
// somebody who waits is woken. It is taken from there by the thread of a piece that has ended, by
// waitForAll(), or by the destructor, which gives it a thread. It stays pending meanwhile, so a
// wait does not end before it. If a task ends its thread, nobody takes the next one there
// (leave()); a wait does.
//
// m_error is written by the piece that has set m_bFailed under the lock, while it is pending.
// wait() reads it under the lock when nothing is pending; the lock of leave() comes between. There
// are no atomics. The innermost Running of a thread tells whether it runs a piece of a group; it is
// thread-local.
//
// A mistake stops a wait, or shows as use after free: all of QBLTaskGroupTest, with x86-asan and
// x64-tsan; PiecesThatAddPiecesNeedNoStack for m_pRefused, SurvivesTheEndOfAThreadAndOfMemory for
// leave() and keepError().

namespace {

const char kTask[] = "QBLTaskGroup::Task::run";
const char kTag[] = "QBL_THROW";
const char kOwnPiece[] = "QBLTaskGroup::wait: called by a piece of the group";

/// A group of which this thread runs a piece, and whom it was called by.
struct Running {
    explicit Running(const QBLTaskGroup& g) : group(g), outer(t_innermost) { t_innermost = this; }
    ~Running() { t_innermost = outer; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    static bool isPieceOf(const QBLTaskGroup& group) {
        const Running* running = t_innermost;
        while (running != nullptr && &running->group != &group) running = running->outer;
        return running != nullptr;
    }

    const QBLTaskGroup& group;
    Running* const outer;

private:
    static thread_local Running* t_innermost;
};

thread_local Running* Running::t_innermost = nullptr;

/// Lets a lock go in a scope.
struct Unlocked {
    explicit Unlocked(QBLThreadCriticalSection& l) QBL_NO_THREAD_SAFETY_ANALYSIS : lock(l) {
        lock.unlock();
    }
    ~Unlocked() QBL_NO_THREAD_SAFETY_ANALYSIS { lock.lock(); }
    Unlocked(const Unlocked&) = delete;
    Unlocked& operator=(const Unlocked&) = delete;

    QBLThreadCriticalSection& lock;
};

}  // namespace

QBLTaskGroup::Task::~Task() = default;

void QBLTaskGroup::Task::run() { m_group.performAll(this); }

QBLTaskGroup::QBLTaskGroup(QBLThreadExecuteRunnable& pool)
    : m_pool(pool), m_lock(0), m_iPending(0), m_pRefused(nullptr), m_bFailed(false) {}

QBLTaskGroup::~QBLTaskGroup() {
    const QBLNoCancel noCancel;
    QBLThreadGuard guard(m_lock);
    while (m_iPending != 0) {
        if (Task* task = takeRefused()) {
            // A piece may end its thread, which must not be one that is in a destructor.
            const Unlocked unlocked(m_lock);
            QBLThread thread(task);
            if (!tavContain([&thread] { thread.start(); })) performAll(task);
        } else {
            m_allDone.wait(m_lock);
        }
    }
}

/// Runs a piece, and those that were refused meanwhile. The group may be gone afterwards.
TAV_CATCHES_UNWINDING void QBLTaskGroup::performAll(Task* task) {
    const Running running(*this);
    while (task != nullptr) {
        try {
            task->work();
        } catch (abi::__forced_unwind&) {
            leave(task);  // this thread ends: what was refused is left to the others
            throw;
        } catch (...) {
            keepError();
        }
        task = leaveForNext(task);
    }
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
    if (accepted != 0) return;
    if (!Running::isPieceOf(*this)) {
        performAll(task);
        return;
    }
    // Within a piece it waits its turn: pieces that add pieces would else fill the stack.
    QBLThreadGuard guard(m_lock);
    task->m_pNext = m_pRefused;
    m_pRefused = task;
    m_allDone.broadcast();
}

QBLTaskGroup::Task* QBLTaskGroup::takeRefused() noexcept {
    Task* task = m_pRefused;
    if (task != nullptr) m_pRefused = task->m_pNext;
    return task;
}

/// Returns with nothing pending, and the lock held as before.
void QBLTaskGroup::waitForAll() {
    while (m_iPending != 0) {
        if (Task* task = takeRefused()) {
            const Unlocked unlocked(m_lock);
            performAll(task);
        } else {
            m_allDone.wait(m_lock);
        }
    }
}

void QBLTaskGroup::wait(const QBLFileLocation& where) {
    if (Running::isPieceOf(*this)) qblThrow<QBLIllegalStateError>(QBL_HERE, kOwnPiece);
    QBLThreadGuard guard(m_lock);
    waitForAll();
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
/// group may be gone as soon as the lock is free, if this was the last one pending.
void QBLTaskGroup::leave(Task* task) noexcept {
    delete task;
    QBLThreadGuard guard(m_lock);
    if (--m_iPending == 0) m_allDone.broadcast();
}

/// The same; gives a refused piece for this thread to run next, or null.
QBLTaskGroup::Task* QBLTaskGroup::leaveForNext(Task* task) noexcept {
    delete task;
    QBLThreadGuard guard(m_lock);
    if (--m_iPending == 0) m_allDone.broadcast();
    return takeRefused();
}

/// Inside a handler: keeps the current exception if it is the first.
void QBLTaskGroup::keepError() {
    {
        QBLThreadGuard guard(m_lock);
        if (m_bFailed) return;
        m_bFailed = true;
    }
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
