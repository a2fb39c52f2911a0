#include "tools/qblconv/Progress.hpp"

#include <unistd.h>

#include <cstdio>

#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "tools/common/LocaleText.hpp"
#include "tools/qblconv/qblconvmsgs.hpp"

namespace conv {

namespace {

constexpr std::chrono::milliseconds kFirst(1000), kEach(100);
constexpr std::uint64_t kMega = 1000000;

}  // namespace

Progress::Progress(bool wanted, const std::string& catalogue, const std::string& locales)
    : m_isWanted(wanted && isatty(STDERR_FILENO) != 0),
      m_next((Clock::now() + kFirst).time_since_epoch().count()),
      m_texts(catalogue, locales) {}

Progress::~Progress() { clear(); }

void Progress::addFile() {
    if (!m_isWanted) return;
    ++m_files;
    show();
}

void Progress::addBytes(std::size_t count) {
    if (!m_isWanted) return;
    m_bytes += count;
    show();
}

void Progress::show() {
    const Clock::time_point now = Clock::now();
    Clock::rep next = m_next;
    // One thread does it.
    if (now.time_since_epoch().count() < next ||
        !m_next.compare_exchange_strong(next, (now + kEach).time_since_epoch().count()))
        return;
    QBLThreadGuard guard(m_lock);
    const std::string text =
        m_texts.text(CONV_PROGRESS, {std::to_string(m_files), std::to_string(m_bytes / kMega)});
    std::fprintf(stderr, "\r\033[K%s", tools::localText(text).c_str());
    std::fflush(stderr);
    m_isShown = true;
}

void Progress::clear() {
    if (!m_isWanted) return;
    QBLThreadGuard guard(m_lock);
    if (m_isShown) std::fputs("\r\033[K", stderr);
    m_isShown = false;
}

}  // namespace conv
