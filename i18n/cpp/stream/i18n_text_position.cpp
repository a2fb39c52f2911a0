#include "i18n/cpp/stream/i18n_text_position.hpp"

#include <emmintrin.h>

#include "i18n/cpp/utf/i18n_utf.hpp"

namespace {

constexpr int kStep = 8;

__m128i load(const char16_t* p) {
    return _mm_loadu_si128(static_cast<const __m128i*>(static_cast<const void*>(p)));
}
__m128i equals(__m128i units, char16_t unit) {
    return _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(unit)));
}
__m128i isIn(__m128i units, char16_t surrogates) {
    return equals(_mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFC00))), surrogates);
}

// In CR LF the CR counts as the line end.
struct LineEnd {
    static bool is(char16_t unit, char16_t before) {
        return unit == u'\r' || (unit == u'\n' && before != u'\r');
    }
    static __m128i are(__m128i units, __m128i before) {
        return _mm_or_si128(equals(units, u'\r'),
                            _mm_andnot_si128(equals(before, u'\r'), equals(units, u'\n')));
    }
};

struct SecondOfPair {
    static bool is(char16_t unit, char16_t before) { return i18nIsLow(unit) && i18nIsHigh(before); }
    static __m128i are(__m128i units, __m128i before) {
        return _mm_and_si128(isIn(units, 0xDC00), isIn(before, 0xD800));
    }
};

// Each of eight 16-bit counters counts every eighth unit, which limits the size of a piece.
template <class Kind>
int count(const char16_t* at, const char16_t* end, char16_t before) {
    if (at == end) return 0;
    int found = Kind::is(*at++, before) ? 1 : 0;
    __m128i counters = _mm_setzero_si128();
    for (; end - at >= kStep; at += kStep)
        counters = _mm_sub_epi16(counters, Kind::are(load(at), load(at - 1)));
    alignas(16) short counted[kStep];
    _mm_store_si128(static_cast<__m128i*>(static_cast<void*>(counted)), counters);
    for (const short n : counted) found += n;
    for (; at != end; ++at) found += Kind::is(*at, at[-1]) ? 1 : 0;
    return found;
}

// Returns the position after the last CR or LF. Requires: there is one.
const char16_t* lastLine(const char16_t* begin, const char16_t* end) {
    for (; end - begin >= kStep; end -= kStep) {
        const __m128i units = load(end - kStep);
        const __m128i ends = _mm_or_si128(equals(units, u'\r'), equals(units, u'\n'));
        if (_mm_movemask_epi8(ends) != 0) break;
    }
    while (end[-1] != u'\r' && end[-1] != u'\n') --end;
    return end;
}

}  // namespace

void I18NTextPosition::pass(const char16_t* begin, const char16_t* end) {
    if (begin == end) return;
    if (*begin == u'\n' && m_cBefore == u'\r') m_cBefore = *begin++;
    if (begin == end) return;
    const char16_t last = end[-1];
    if (const int lines = count<LineEnd>(begin, end, m_cBefore)) {
        begin = lastLine(begin, end);
        m_cBefore = begin[-1];
        m_iLine += lines;
        m_iColumn = 1;
    }
    m_iColumn += end - begin - count<SecondOfPair>(begin, end, m_cBefore);
    m_cBefore = last;
}

void I18NTextPosition::passSequence() {
    ++m_iColumn;
    m_cBefore = 0;
}
