#include "QBLCore/Messages/internal/QBLPatternLoan.hpp"

#include <cstddef>
#include <functional>
#include <string_view>
#include <thread>

// A table stores the patterns that are not on loan. The thread selects the row, and the hash of the
// text selects the place in the row. Both taking and giving back exchange the pointer in this
// place, so a pattern belongs to one thread at a time. If a thread finds no pattern or a different
// pattern in the place, it parses the text. If a thread gives a pattern back and another pattern is
// in the place by then, the thread destroys that other pattern. Threads usually use different rows,
// so they rarely collide.

namespace {

const std::size_t kRows = 4;
const std::size_t kPlaces = 64;
const std::size_t kLongestLocales = 256;

}  // namespace

QBLPatternLoan::QBLPatternLoan(const char* text, const char* locales) : m_pPlace(nullptr) {
    static std::atomic<Kept*> s_places[kRows][kPlaces] = {};
    const std::string_view wanted(text);
    const std::size_t row = std::hash<std::thread::id>()(std::this_thread::get_id()) % kRows;
    const std::size_t place = std::hash<std::string_view>()(wanted) % kPlaces;
    m_pPlace = &s_places[row][place];
    // acquire: pairs with the release of the thread that gave the pattern back
    m_pKept.reset(m_pPlace->exchange(nullptr, std::memory_order_acquire));
    if (m_pKept == nullptr || m_pKept->locales != locales || !m_pKept->pattern.hasText(wanted))
        m_pKept = std::make_unique<Kept>(text, locales);
}

// Drops ICU's formats: they are large, and keep the time zone that was the default at their
// creation.
QBLPatternLoan::~QBLPatternLoan() {
    m_pKept->pattern.dropICU();
    if (m_pKept->locales.size() > kLongestLocales || !m_pKept->pattern.isKeepable()) return;
    m_pKept.reset(m_pPlace->exchange(m_pKept.release(), std::memory_order_acq_rel));
}
