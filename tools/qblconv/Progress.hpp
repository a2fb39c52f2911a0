#ifndef TOOLS_QBLCONV_PROGRESS_HPP
#define TOOLS_QBLCONV_PROGRESS_HPP

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "tools/common/MessageText.hpp"

namespace conv {

/// A progress line on the terminal, shown after the first second.
///
/// Threads: any thread may call any operation.
class Progress {
public:
    explicit Progress(bool wanted, const tools::Catalogue& catalogue, const std::string& locales);
    /// Removes the line.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void addFile();
    void addBytes(std::size_t count);
    /// Removes the line until there is new progress.
    void clear();

private:
    using Clock = std::chrono::steady_clock;
    void show();

    const bool m_bWanted;  // requested, and the error output is a terminal
    std::atomic<std::uint64_t> m_uFiles{0};
    std::atomic<std::uint64_t> m_uBytes{0};
    std::atomic<Clock::rep> m_iNext;  // time of the next display
    QBLThreadCriticalSection m_lock;
    tools::MessageText m_texts;  // guarded by m_lock, like m_bShown
    bool m_bShown = false;
};

}  // namespace conv

#endif
