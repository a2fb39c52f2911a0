#include "QBLCore/Messages/internal/QBLPatternLoan.hpp"

#include <cstddef>
#include <functional>
#include <string_view>
#include <thread>

// A pattern that is not on loan stays in a place that its text and the thread choose. Taking and
// giving back exchange the pointer of the place, so a pattern belongs to one thread at a time. A
// thread that finds no pattern there, or another one, parses the text. A thread that gives a
// pattern back destroys the one that is there by then. Threads use different rows, so they rarely
// collide.

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

// ICU's formats are large, and keep the time zone that was the default when they were made.
QBLPatternLoan::~QBLPatternLoan() {
    m_pKept->pattern.dropICU();
    if (m_pKept->locales.size() > kLongestLocales || !m_pKept->pattern.isKeepable()) return;
    m_pKept.reset(m_pPlace->exchange(m_pKept.release(), std::memory_order_acq_rel));
}
