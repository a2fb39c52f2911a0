#ifndef QBLCORE_THREADPOOLS_QBLPOOLTASK_HPP
#define QBLCORE_THREADPOOLS_QBLPOOLTASK_HPP

#include <exception>

#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLThreadRunnable.hpp"

class QBLThreadExecuteRunnable;

/// A task that a pool runs at most once, and that owns itself: it is deleted after it has run, or
/// when it is certain that it will not run. Base of the tasks of qblExecute() and qblSubmit().
///
/// If a QBLThreadPoolQueued drops the task, the task is deleted when the pool is destroyed. An
/// executor of the program must not drop a task that it has accepted.
///
/// Threads: until a task is handed to a pool, only the thread that hands it over may use it. After
/// that, the task may already be deleted.
class QBL_API QBLPoolTask : public QBLThreadRunnable {
public:
    QBLPoolTask(const QBLPoolTask&) = delete;
    QBLPoolTask& operator=(const QBLPoolTask&) = delete;
    ~QBLPoolTask() override;

    /// Does the work, and then deletes the task. For pools.
    void run() final;

    /// Hands a task to a pool, and takes ownership of the task.
    /// @param timeout  as for execute() of the pool
    /// @return false if the pool did not accept the task
    /// @throws the errors of execute()
    static bool execute(QBLThreadExecuteRunnable& pool, QBLPoolTask* task, unsigned long timeout);
    static bool execute(QBLThreadExecuteRunnable& pool, QBLPoolTask* task,
                        QBLMilliseconds timeout) {
        return execute(pool, task, timeout.count());
    }
    /// Does the same, but gives all errors to the task's fail().
    static void submit(QBLThreadExecuteRunnable& pool, QBLPoolTask* task, unsigned long timeout);
    static void submit(QBLThreadExecuteRunnable& pool, QBLPoolTask* task, QBLMilliseconds timeout) {
        submit(pool, task, timeout.count());
    }

protected:
    QBLPoolTask() = default;

private:
    friend class QBLThreadExecuteRunnable;
    friend class QBLEnrolledTasks;

    virtual void work() = 0;
    /// Receives the exception that left work(). If the task does not run, or ends its thread,
    /// receives a throwable that says so.
    virtual void fail(std::exception_ptr error) noexcept = 0;

    bool handOver(QBLThreadExecuteRunnable& pool, unsigned long timeout);
    void retract() noexcept;
    static void dropAllOf(const QBLThreadExecuteRunnable& pool) noexcept;

    // Null if the pool drops no tasks. Otherwise the task is in the list of such tasks; the links
    // are guarded by the lock of this list.
    const QBLThreadExecuteRunnable* m_pPool = nullptr;
    QBLPoolTask* m_pNext = nullptr;
    QBLPoolTask* m_pPrevious = nullptr;
};

#endif
