#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"

#include <new>

#include "QBLCore/Base/QBLNoCancel.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/ThreadPools/QBLThreadExecuteRunnable.hpp"
#include "QBLCore/ThreadPools/internal/QBLTaskRun.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/shared/QBLLayerResult.hpp"
#include "TavThread/shared/TavContain.hpp"

// A piece is pending from start() until leave(). m_iPending counts it under m_lock, and the thread
// that lowers the count to 0 wakes the waiters. From then on the group may be destroyed, so leave()
// does not use the group after it has released the lock. A piece is deleted before the count is
// lowered, because it may refer to objects that live only until the wait ends.
//
// The pool runs the pieces that it accepts: performAll() runs on a worker. start() runs a refused
// piece at once, except if it is called in a piece of the same group. In this case, start() puts
// the new piece into m_pRefused and wakes the waiters. A thread takes the new piece from m_pRefused
// when its own piece has ended, or in waitForAll(), or in waitQuietly(). waitQuietly() runs the
// piece on a new thread. The piece is pending all this time, so no wait ends before the piece. If a
// piece ends its thread, this thread takes no refused piece (leave()); a wait takes it.
//
// The piece that has set m_bFailed under the lock writes m_error while it is pending. wait() reads
// m_error under the lock when no piece is pending. leave() takes the lock in between. There are no
// atomics. A thread-local list of Running objects tells whether the thread runs a piece of a group.
//
// A mistake here would make a wait hang or cause a use after free. QBLTaskGroupTest would detect it
// with x86-asan and x64-tsan. NestedPiecesNeedNoStack tests m_pRefused,
// DestructorCompletesEvenIfThreadsEnd tests leave(); Callbacks and the row QBLTaskGroup.error of
// tests/faults test keepError().

namespace {

const char kTask[] = "QBLTaskGroup::Task::run";
const char kTag[] = "QBL_THROW";
const char kOwnPiece[] = "QBLTaskGroup::wait: called by a piece of the group";

/// Records that this thread runs a piece of a group. `outer` is the previous record of the thread.
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

/// Releases a lock for a scope.
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

QBLTaskGroup::~QBLTaskGroup() { waitQuietly(); }

void QBLTaskGroup::waitQuietly() noexcept {
    const QBLNoCancel noCancel;
    QBLThreadGuard guard(m_lock);
    while (m_iPending != 0) {
        if (Task* task = takeRefused()) {
            // A piece may end its thread, so it must not run on a thread that is in a destructor.
            const Unlocked unlocked(m_lock);
            qblRunOnOwnThread(*task, 0);
        } else {
            m_allDone.wait(m_lock);
        }
    }
}

/// Runs a piece, and then refused pieces as long as there are any. The group may be destroyed
/// afterwards.
TAV_CATCHES_UNWINDING void QBLTaskGroup::performAll(Task* task) {
    const Running running(*this);
    while (task != nullptr) {
        try {
            task->work();
        } catch (abi::__forced_unwind&) {
            leave(task);  // this thread ends, so other threads run the refused pieces
            throw;
        } catch (...) {
            keepError();
        }
        task = leaveForNext(task);
    }
}

/// Takes ownership of the task.
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
    // This thread already runs a piece of the group, so the new piece must wait. Otherwise pieces
    // that add pieces would fill the stack.
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

/// Waits until no piece is pending. The caller holds the lock before and after the call.
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

/// Deletes the task first, because it may refer to objects that live only until the wait ends. If
/// this was the last pending piece, the group may be destroyed as soon as the lock is free.
void QBLTaskGroup::leave(Task* task) noexcept {
    delete task;
    QBLThreadGuard guard(m_lock);
    if (--m_iPending == 0) m_allDone.broadcast();
}

/// Does the same, and returns a refused piece for this thread to run next, or null.
QBLTaskGroup::Task* QBLTaskGroup::leaveForNext(Task* task) noexcept {
    delete task;
    QBLThreadGuard guard(m_lock);
    if (--m_iPending == 0) m_allDone.broadcast();
    return takeRefused();
}

/// For handlers: keeps the current exception if it is the first error.
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
