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

/// A group of pieces of work. A pool runs the pieces, and wait() waits for them. wait() also throws
/// the first error that left a piece. The other errors are dropped.
///
/// If the pool does not accept a piece at once, because no worker is idle or its queue is full,
/// run() itself runs the piece. A piece may add other pieces to its group. If the pool does not
/// accept such a piece, the next thread of the group that becomes free runs it; this can be a
/// thread in wait(). A piece that waits for another group blocks its worker. In a pool of a fixed
/// size, all workers may therefore end up waiting for each other.
///
/// Threads: any thread may call run() and wait(). The pool must outlive the last wait. Do not stop
/// the pool before the last wait has ended: if the pool drops its queue, the group waits forever.
///
///     QBLTaskGroup group(pool);
///     for (File& file : files) group.run([&file] { file.check(); });
///     group.wait();
class QBL_API QBLTaskGroup {
public:
    /// @param pool  not owned
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError
    explicit QBLTaskGroup(QBLThreadExecuteRunnable& pool);
    /// Waits for all pieces. Drops an error that no wait() has thrown. Must not be called in a
    /// piece of the group. A cancellation of the caller takes effect only afterwards. Runs each
    /// piece that the pool has refused on a new thread, and waits until the system can create this
    /// thread.
    ~QBLTaskGroup();
    QBLTaskGroup(const QBLTaskGroup&) = delete;
    QBLTaskGroup& operator=(const QBLTaskGroup&) = delete;

    /// Runs a callable. The group copies or moves the callable. The thread that runs the copy
    /// destroys the copy before wait() returns.
    /// @throws QBLOutOfMemoryError; the errors of the pool's execute(), such as
    ///     QBLIllegalStateError if the pool is stopped; the errors of copying the callable.
    ///     qblRethrowTranslated turns other exceptions into throwables. If run() throws, the
    ///     callable is not run.
    template <class Body,
              class = std::enable_if_t<!std::is_base_of_v<QBLThreadRunnable, std::decay_t<Body>>>>
    void run(Body&& body) {
        Task* task = nullptr;
        QBL_ALLOC_TRY
        task = new BodyTask<std::decay_t<Body>>(*this, std::forward<Body>(body));
        QBL_ALLOC_CATCH
        start(task);
    }
    /// Does the same for a runnable. The caller keeps the runnable alive until its run() has ended.
    void run(QBLThreadRunnable& runnable) {
        run([&runnable] { runnable.run(); });
    }
    /// Waits until all pieces have been run. If a piece has failed since the last wait, throws the
    /// first error with its own class. The back-trace of the error contains the place where it was
    /// thrown and the place of this call. qblRethrowTranslated turns other exceptions into
    /// throwables. If there was no memory to keep the error, throws QBLOutOfMemoryError. If several
    /// threads wait at the same time, only one of them throws.
    /// @throws QBLIllegalStateError if called in a piece of the group, which would deadlock
    /// @param where  the place for the back-trace; by default, the place of the call
    void wait(const QBLFileLocation& where = QBLFileLocation(__builtin_FILE(), __builtin_LINE()));

protected:
    /// Waits as the destructor does. A derived class whose members the pieces use must call it
    /// first in its own destructor; otherwise the pieces use a partly destroyed object.
    void waitQuietly() noexcept;

private:
    /// A piece of work. The group deletes the piece after it has been run.
    class QBL_API Task : public QBLThreadRunnable {
    public:
        explicit Task(QBLTaskGroup& group) : m_group(group) {}
        ~Task() override;
        void run() final;

    private:
        friend class QBLTaskGroup;

        virtual void work() = 0;

        QBLTaskGroup& m_group;
        Task* m_pNext = nullptr;  // in the list of refused pieces
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
    int m_iPending;                        // guarded by m_lock, like the members below
    Task* m_pRefused;                      // list of pieces that the pool did not accept
    bool m_bFailed;
    // The piece that failed first writes m_error while it is pending. Empty if there was no memory
    // to keep the error.
    QBLDeferredThrowable m_error;
};

#endif
