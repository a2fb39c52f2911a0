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

Progress::Progress(bool wanted, const tools::Catalogue& catalogue, const std::string& locales)
    : m_bWanted(wanted && isatty(STDERR_FILENO) != 0),
      m_iNext((Clock::now() + kFirst).time_since_epoch().count()),
      m_texts(catalogue, locales) {}

Progress::~Progress() { clear(); }

void Progress::addFile() {
    if (!m_bWanted) return;
    ++m_uFiles;
    show();
}

void Progress::addBytes(std::size_t count) {
    if (!m_bWanted) return;
    m_uBytes += count;
    show();
}

void Progress::show() {
    const Clock::time_point now = Clock::now();
    Clock::rep next = m_iNext;
    // Only one thread shows the line.
    if (now.time_since_epoch().count() < next ||
        !m_iNext.compare_exchange_strong(next, (now + kEach).time_since_epoch().count()))
        return;
    QBLThreadGuard guard(m_lock);
    const std::string text = m_texts.text(
        qblconvmsgs::convProgress(std::to_string(m_uFiles), std::to_string(m_uBytes / kMega)));
    std::fprintf(stderr, "\r\033[K%s", tools::localText(text).c_str());
    std::fflush(stderr);
    m_bShown = true;
}

void Progress::clear() {
    if (!m_bWanted) return;
    QBLThreadGuard guard(m_lock);
    if (m_bShown) std::fputs("\r\033[K", stderr);
    m_bShown = false;
}

}  // namespace conv
