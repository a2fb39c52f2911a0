#ifndef QBLCORE_THREADS_QBLCALLABLETHREAD_HPP
#define QBLCORE_THREADS_QBLCALLABLETHREAD_HPP

#include <type_traits>
#include <utility>

#include "QBLCore/Threads/QBLThread.hpp"

/// A QBLThread that runs a callable, which it owns. The destructor waits for the thread.
///
///     QBLCallableThread thread([&] { watch(folder); });
///     thread.start();
///
/// An exception that leaves the callable is dropped. To keep it, or a result, pass a
/// std::packaged_task.
///
/// Threads: as for QBLThread.
template <class Callable>
class QBLCallableThread final : public QBLThread {
public:
    /// @param callable  copied or moved
    /// @param stackSize  as for QBLThread
    template <class Body, class = std::enable_if_t<std::is_invocable_v<std::decay_t<Body>&>>>
    explicit QBLCallableThread(Body&& callable, unsigned long stackSize = 0)
        : QBLThread(nullptr, stackSize), m_callable(std::forward<Body>(callable)) {}
    ~QBLCallableThread() override { joinQuietly(); }

    /// Calls the callable. start() runs it again if the thread was joined.
    void run() override { static_cast<void>(m_callable()); }

private:
    Callable m_callable;
};

template <class Body>
explicit QBLCallableThread(Body&&, unsigned long = 0) -> QBLCallableThread<std::decay_t<Body>>;

#endif
