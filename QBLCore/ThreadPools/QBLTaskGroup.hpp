#ifndef QBLCORE_THREADPOOLS_QBLTASKGROUP_HPP
#define QBLCORE_THREADPOOLS_QBLTASKGROUP_HPP

#include <type_traits>
#include <utility>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLDeferredThrowable.hpp"
#include "QBLCore/Threads/QBLThreadConditionVariable.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadRunnable.hpp"

class QBLThreadExecuteRunnable;

/// Pieces of work that a pool does, and somebody waits for. The first error that leaves one of them
/// is thrown again by wait(); the others are dropped.
///
/// A piece that the pool does not take at once, because no worker is idle or its queue is full, is
/// run by run() itself. A piece may add others to its group; those that the pool does not take are
/// run after it, by whichever thread of the group comes free, a waiting one included. A piece that
/// waits for another group keeps its worker from other work: in a pool of a fixed size, all workers
/// may come to wait for each other.
///
/// Threads: run() and wait() for any thread. The pool must outlive the last wait and must not be
/// told to stop before it: a pool that drops its queue would leave the group waiting.
///
///     QBLTaskGroup group(pool);
///     for (File& file : files) group.run([&file] { file.check(); });
///     group.wait();
class QBL_API QBLTaskGroup {
public:
    /// @param pool  not owned
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError
    explicit QBLTaskGroup(QBLThreadExecuteRunnable& pool);
    /// Waits for all; an error that nobody has waited for is dropped. Not in a piece of the group.
    /// The caller is not cancelled meanwhile. Pieces that the pool has refused get threads of their
    /// own.
    ~QBLTaskGroup();
    QBLTaskGroup(const QBLTaskGroup&) = delete;
    QBLTaskGroup& operator=(const QBLTaskGroup&) = delete;

    /// Has a callable run: a copy of it, or what is moved from it, which is destroyed on the thread
    /// that ran it, before a wait for it ends.
    /// @throws QBLOutOfMemoryError; what the pool's execute() throws, such as QBLIllegalStateError
    ///     from one that is stopped; what copying the callable throws. What is no throwable comes
    ///     as one, as of qblRethrowTranslated. The callable is then not run.
    template <class Body,
              class = std::enable_if_t<!std::is_base_of_v<QBLThreadRunnable, std::decay_t<Body>>>>
    void run(Body&& body) {
        Task* task = nullptr;
        QBL_ALLOC_TRY
        task = new BodyTask<std::decay_t<Body>>(*this, std::forward<Body>(body));
        QBL_ALLOC_CATCH
        start(task);
    }
    /// The same for a runnable, which stays the caller's and must live until it has been run.
    void run(QBLThreadRunnable& runnable) {
        run([&runnable] { runnable.run(); });
    }
    /// Waits until all has been run. If something failed since the last wait, throws the first
    /// error, as its own class: with the place where it was thrown, and this one. What is no
    /// throwable comes as one, as of qblRethrowTranslated; an error that there was no memory to
    /// keep, as QBLOutOfMemoryError. Of several waits at a time one throws.
    /// @throws QBLIllegalStateError in a piece of the group, which would wait for itself
    /// @param where  the place, the caller's own unless given
    void wait(const QBLFileLocation& where = QBLFileLocation(__builtin_FILE(), __builtin_LINE()));

private:
    /// A piece of work, which deletes itself when it has been run.
    class QBL_API Task : public QBLThreadRunnable {
    public:
        explicit Task(QBLTaskGroup& group) : m_group(group) {}
        ~Task() override;
        void run() final;

    private:
        friend class QBLTaskGroup;

        virtual void work() = 0;

        QBLTaskGroup& m_group;
        Task* m_pNext = nullptr;  // among the refused
    };

    template <class Body>
    class BodyTask final : public Task {
    public:
        template <class Argument>
        BodyTask(QBLTaskGroup& group, Argument&& body)
            : Task(group), m_body(std::forward<Argument>(body)) {}

    private:
        void work() override { m_body(); }

        Body m_body;
    };

    void start(Task* task);
    void performAll(Task* task);
    void waitForAll() QBL_REQUIRES(m_lock);
    Task* takeRefused() noexcept QBL_REQUIRES(m_lock);
    void leave(Task* task) noexcept;
    Task* leaveForNext(Task* task) noexcept;
    void keepError();

    QBLThreadExecuteRunnable& m_pool;
    QBLThreadCriticalSection m_lock;
    QBLThreadConditionVariable m_allDone;  // waited on under m_lock
    int m_iPending;                        // guarded by m_lock, as the rest
    Task* m_pRefused;                      // pieces that the pool did not take; a list
    bool m_bFailed;
    // Written by the piece that failed first, while it is pending; empty after a failure that there
    // was no memory to keep.
    QBLDeferredThrowable m_error;
};

#endif
