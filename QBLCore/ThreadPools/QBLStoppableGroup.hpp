#ifndef QBLCORE_THREADPOOLS_QBLSTOPPABLEGROUP_HPP
#define QBLCORE_THREADPOOLS_QBLSTOPPABLEGROUP_HPP

#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"
#include "QBLCore/Threads/QBLStopToken.hpp"

/// A task group whose pieces can be asked to stop. A piece that takes a QBLStopToken gets the
/// group's token, and asks it now and then. All pieces still run, and wait() waits for them.
///
///     QBLStoppableGroup group(pool);
///     group.run([&](const QBLStopToken& token) { while (!token.stop_requested()) ... });
///     group.request_stop();
///     group.wait();
///
/// Threads: as for QBLTaskGroup; any thread and any piece may request the stop.
class QBLStoppableGroup : public QBLTaskGroup {
public:
    /// @param pool  as for QBLTaskGroup
    explicit QBLStoppableGroup(QBLThreadExecuteRunnable& pool) : QBLTaskGroup(pool) {}
    /// Waits for all pieces, as ~QBLTaskGroup() does.
    ~QBLStoppableGroup() { waitQuietly(); }

    /// Runs a callable with or without a parameter for the token, or a runnable, as
    /// QBLTaskGroup::run() does.
    template <class Body>
    void run(Body&& body) {
        if constexpr (std::is_invocable_v<std::decay_t<Body>&, const QBLStopToken&>) {
            QBL_ALLOC_TRY
            QBLTaskGroup::run([token = get_token(),
                               piece = std::decay_t<Body>(std::forward<Body>(body))]() mutable {
                static_cast<void>(piece(static_cast<const QBLStopToken&>(token)));
            });
            QBL_ALLOC_CATCH
        } else {
            QBLTaskGroup::run(std::forward<Body>(body));
        }
    }

    // NOLINTBEGIN(readability-identifier-naming): the names of the standard
    [[nodiscard]] QBLStopToken get_token() const noexcept { return m_source.get_token(); }
    [[nodiscard]] bool stop_requested() const noexcept { return m_source.stop_requested(); }
    /// A stop cannot be undone: the token of pieces that are added later reports the stop, too.
    /// @return true if this call requested the stop, false if a stop was requested before.
    bool request_stop() const noexcept { return m_source.request_stop(); }
    // NOLINTEND(readability-identifier-naming)

private:
    const QBLStopSource m_source;
};

#endif
