#ifndef QBLCORE_THREADPOOLS_QBLSUBMIT_HPP
#define QBLCORE_THREADPOOLS_QBLSUBMIT_HPP

#include <future>
#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/ThreadPools/QBLPoolTask.hpp"
#include "QBLCore/ThreadPools/QBLThreadExecuteRunnable.hpp"
#include "QBLCore/Threads/QBLMilliseconds.hpp"

/// A task that makes a future ready, after it has destroyed the callable and its arguments.
template <class Result, class Callable, class... Arguments>
class QBLFutureTask final : public QBLPoolTask {
public:
    template <class... Parts>
    explicit QBLFutureTask(std::in_place_t, Parts&&... parts)
        : m_call(std::in_place, std::forward<Parts>(parts)...) {}

    std::future<Result> getFuture() { return m_promise.get_future(); }

private:
    void work() override {
        if constexpr (std::is_void_v<Result>) {
            call();
            m_call.reset();
            m_promise.set_value();
        } else {
            Result result = call();
            m_call.reset();
            m_promise.set_value(std::forward<Result>(result));
        }
    }
    void fail(std::exception_ptr error) noexcept override {
        m_call.reset();
        m_promise.set_exception(std::move(error));
    }
    // std::apply() calls as std::invoke() does, but without <functional>, which is slow to compile.
    Result call() {
        const auto invoke = [](Callable& callable, Arguments&... arguments) -> Result {
            return std::apply(std::move(callable), std::forward_as_tuple(std::move(arguments)...));
        };
        return std::apply(invoke, *m_call);
    }

    std::optional<std::tuple<Callable, Arguments...>> m_call;
    std::promise<Result> m_promise;
};

template <class Callable, class... Arguments>
using QBLSubmitResult = std::invoke_result_t<std::decay_t<Callable>, std::decay_t<Arguments>...>;

/// Does the same as qblSubmit(), but waits until the pool can accept the task.
/// @param timeout  milliseconds, a duration or a time point, as for execute() of the pool;
///     QBLWaitForever waits without limit
template <class Callable, class... Arguments>
[[nodiscard]] std::future<QBLSubmitResult<Callable, Arguments...>> qblSubmitFor(
    QBLThreadExecuteRunnable& pool, unsigned long timeout, Callable&& callable,
    Arguments&&... arguments) {
    using Task = QBLFutureTask<QBLSubmitResult<Callable, Arguments...>, std::decay_t<Callable>,
                               std::decay_t<Arguments>...>;
    QBL_ALLOC_TRY
    Task* const task = new Task(std::in_place, std::forward<Callable>(callable),
                                std::forward<Arguments>(arguments)...);
    auto future = task->getFuture();
    QBLPoolTask::submit(pool, task, timeout);
    return future;
    QBL_ALLOC_CATCH
}
template <class Callable, class... Arguments>
[[nodiscard]] std::future<QBLSubmitResult<Callable, Arguments...>> qblSubmitFor(
    QBLThreadExecuteRunnable& pool, QBLMilliseconds timeout, Callable&& callable,
    Arguments&&... arguments) {
    return qblSubmitFor(pool, timeout.count(), std::forward<Callable>(callable),
                        std::forward<Arguments>(arguments)...);
}

/// Runs a callable in any pool, and returns a future for its result. As std::async does, it copies
/// or moves the callable and the arguments, and calls the copies as rvalues; use std::ref to pass a
/// reference. The copies are destroyed before the future becomes ready.
///
///     std::future<Index> index = qblSubmit(pool, makeIndex, path);
///     use(index.get());
///
/// The future has the exception that left the callable, with its own class and back-trace. It has
/// these throwables if the callable does not run or does not end:
/// - QBLThreadResourceError, if the pool does not accept the task at once because no worker is idle
///   or its queue is full (see qblSubmitFor()), and if the callable ends its thread
/// - the errors of execute() of the pool, such as QBLIllegalStateError if the pool is stopped
/// - QBLIllegalStateError, if a QBLThreadPoolQueued drops the task. The future becomes ready when
///   the pool is destroyed; so do not wait for it between setStopWork() and the destruction.
///
/// Unlike a future of std::async, the future does not wait in its destructor.
///
/// @throws QBLOutOfMemoryError; the errors of copying the callable and the arguments, as throwables
///
/// Threads: as for execute() of the pool. A task that waits for a future blocks its worker; in a
/// pool of a fixed size, all workers may therefore end up waiting for each other.
template <class Callable, class... Arguments>
[[nodiscard]] std::future<QBLSubmitResult<Callable, Arguments...>> qblSubmit(
    QBLThreadExecuteRunnable& pool, Callable&& callable, Arguments&&... arguments) {
    return qblSubmitFor(pool, 0, std::forward<Callable>(callable),
                        std::forward<Arguments>(arguments)...);
}

#endif
