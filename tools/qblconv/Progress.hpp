#ifndef TOOLS_QBLCONV_PROGRESS_HPP
#define TOOLS_QBLCONV_PROGRESS_HPP

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "tools/common/MessageText.hpp"

namespace conv {

/// A line on the terminal that says how far the work is, once it takes longer than a second.
///
/// Threads: any thread may call any operation.
class Progress {
public:
    explicit Progress(bool wanted, const std::string& catalogue, const std::string& locales);
    /// Takes the line away.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void addFile();
    void addBytes(std::size_t count);
    /// Takes the line away until there is progress again.
    void clear();

private:
    using Clock = std::chrono::steady_clock;
    void show();

    const bool m_bWanted;  // and the error output is a terminal
    std::atomic<std::uint64_t> m_uFiles{0};
    std::atomic<std::uint64_t> m_uBytes{0};
    std::atomic<Clock::rep> m_iNext;  // when it is to be shown
    QBLThreadCriticalSection m_lock;
    tools::MessageText m_texts;  // under the lock, as the rest
    bool m_bShown = false;
};

}  // namespace conv

#endif
