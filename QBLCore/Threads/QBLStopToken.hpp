#ifndef QBLCORE_THREADS_QBLSTOPTOKEN_HPP
#define QBLCORE_THREADS_QBLSTOPTOKEN_HPP

#include <atomic>
#include <memory>
#include <utility>

#include "QBLCore/Exceptions/QBLAllocation.hpp"

/// Tells running code that it should stop, as std::stop_token does in C++20. The code asks the
/// token now and then. A default-constructed token never reports a stop.
///
/// Threads: any thread may use its own copy; several threads may ask one token that no thread
/// changes.
class QBLStopToken {
public:
    QBLStopToken() noexcept = default;

    // NOLINTBEGIN(readability-identifier-naming): the names of the standard
    /// If this returns true, the caller sees everything that the thread that requested the stop
    /// wrote before the request.
    [[nodiscard]] bool stop_requested() const noexcept {
        return m_pStop != nullptr && m_pStop->load(std::memory_order_acquire);
    }
    [[nodiscard]] bool stop_possible() const noexcept { return m_pStop != nullptr; }
    // NOLINTEND(readability-identifier-naming)

private:
    friend class QBLStopSource;
    explicit QBLStopToken(std::shared_ptr<const std::atomic<bool>> stop) noexcept
        : m_pStop(std::move(stop)) {}

    std::shared_ptr<const std::atomic<bool>> m_pStop;
};

/// Requests a stop, which its tokens then report, as std::stop_source does. Copies request the same
/// stop. A source that was moved from has no stop: its operations return false, and so do those of
/// its tokens.
///
///     QBLStopSource source;
///     group.run([token = source.get_token()] {
///         while (!token.stop_requested()) step();
///     });
///     source.request_stop();
///
/// Errors: the constructor throws QBLOutOfMemoryError.
///
/// Threads: any thread may use constant operations and request_stop().
class QBLStopSource {
public:
    QBLStopSource() : m_pStop(makeStop()) {}

    // NOLINTBEGIN(readability-identifier-naming): the names of the standard
    [[nodiscard]] QBLStopToken get_token() const noexcept { return QBLStopToken(m_pStop); }
    [[nodiscard]] bool stop_requested() const noexcept {
        return m_pStop != nullptr && m_pStop->load(std::memory_order_acquire);
    }
    /// @return true if this call requested the stop, false if a stop was requested before.
    bool request_stop() const noexcept {
        return m_pStop != nullptr && !m_pStop->exchange(true, std::memory_order_acq_rel);
    }
    // NOLINTEND(readability-identifier-naming)

private:
    static std::shared_ptr<std::atomic<bool>> makeStop() {
        QBL_ALLOC_TRY
        return std::make_shared<std::atomic<bool>>(false);
        QBL_ALLOC_CATCH
    }

    std::shared_ptr<std::atomic<bool>> m_pStop;
};

#endif
