#ifndef QBLCORE_THREADPOOLS_QBLEXECUTE_HPP
#define QBLCORE_THREADPOOLS_QBLEXECUTE_HPP

#include <type_traits>
#include <utility>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/ThreadPools/QBLPoolTask.hpp"
#include "QBLCore/ThreadPools/QBLThreadExecuteRunnable.hpp"
#include "QBLCore/Threads/QBLMilliseconds.hpp"

/// A task for a callable whose exceptions are dropped.
template <class Body>
class QBLExecuteTask final : public QBLPoolTask {
public:
    template <class Callable>
    QBLExecuteTask(std::in_place_t, Callable&& callable)
        : m_body(std::forward<Callable>(callable)) {}

private:
    void work() override { static_cast<void>(m_body()); }
    void fail(std::exception_ptr) noexcept override {}

    Body m_body;
};

/// Runs a callable in any pool. The pool gets a copy of the callable, which may be move-only. The
/// copy is destroyed after it has run. If a QBLThreadPoolQueued drops it, it is destroyed together
/// with the pool. An exception that leaves the callable is dropped; qblSubmit() and QBLTaskGroup
/// keep it.
///
///     qblExecute(pool, [path] { index(path); });
///
/// @param timeout  milliseconds, a duration or a time point, as for execute() of the pool
/// @return false if the pool did not accept the callable, which is then not run
/// @throws QBLOutOfMemoryError; the errors of execute(), such as QBLIllegalStateError if the pool
///     is stopped; the errors of copying the callable, as throwables. If it throws, the callable is
///     not run.
///
/// Threads: as for execute() of the pool.
template <class Callable, class = std::enable_if_t<std::is_invocable_v<std::decay_t<Callable>&>>>
bool qblExecute(QBLThreadExecuteRunnable& pool, Callable&& callable, unsigned long timeout = 0) {
    QBL_ALLOC_TRY
    return QBLPoolTask::execute(
        pool,
        new QBLExecuteTask<std::decay_t<Callable>>(std::in_place, std::forward<Callable>(callable)),
        timeout);
    QBL_ALLOC_CATCH
}
template <class Callable, class = std::enable_if_t<std::is_invocable_v<std::decay_t<Callable>&>>>
bool qblExecute(QBLThreadExecuteRunnable& pool, Callable&& callable, QBLMilliseconds timeout) {
    return qblExecute(pool, std::forward<Callable>(callable), timeout.count());
}

#endif
