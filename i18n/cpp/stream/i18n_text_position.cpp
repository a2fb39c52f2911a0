#include "i18n/cpp/stream/i18n_text_position.hpp"

#include <emmintrin.h>

#include <algorithm>

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

constexpr std::ptrdiff_t kBlock = 2 * kStep;
// Each of 16 8-bit counters counts every 16th unit.
constexpr std::ptrdiff_t kMostBlocks = 0xFF;

// Counts the LFs of whole blocks. Packing keeps LF and CR, and turns no other unit into LF or CR.
// @param hasCR  receives true if there is a CR
int countLF(const char16_t* at, const char16_t* end, bool& hasCR) {
    const __m128i lf = _mm_set1_epi8('\n'), cr = _mm_set1_epi8('\r');
    __m128i counters = _mm_setzero_si128(), crs = _mm_setzero_si128();
    for (; at != end; at += kBlock) {
        const __m128i units = _mm_packus_epi16(load(at), load(at + kStep));
        counters = _mm_sub_epi8(counters, _mm_cmpeq_epi8(units, lf));
        crs = _mm_or_si128(crs, _mm_cmpeq_epi8(units, cr));
    }
    hasCR = _mm_movemask_epi8(crs) != 0;
    const __m128i sums = _mm_sad_epu8(counters, _mm_setzero_si128());
    return _mm_cvtsi128_si32(sums) + _mm_extract_epi16(sums, 4);
}

// Counts line ends. In most texts all line ends are LF, and countLF() is enough.
int countLines(const char16_t* at, const char16_t* end, char16_t before) {
    int lines = 0;
    while (end - at >= kBlock) {
        const char16_t* const part = at + std::min((end - at) / kBlock, kMostBlocks) * kBlock;
        bool hasCR = false;
        const int found = countLF(at, part, hasCR);
        const bool isSecond = before == u'\r' && *at == u'\n';
        lines += hasCR ? count<LineEnd>(at, part, before) : found - (isSecond ? 1 : 0);
        before = part[-1];
        at = part;
    }
    return lines + count<LineEnd>(at, end, before);
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
    if (const int lines = countLines(begin, end, m_cBefore)) {
        begin = lastLine(begin, end);
        m_cBefore = begin[-1];
        m_iLine += lines;
        m_iColumn = 1;
    }
    m_iColumn += end - begin - count<SecondOfPair>(begin, end, m_cBefore);
    m_cBefore = last;
}

void I18NTextPosition::passASCII(const char* begin, const char* end, std::size_t lines) {
    if (begin == end) return;
    const char* line = begin;
    if (lines > 0) {
        line = end;
        while (line[-1] != '\r' && line[-1] != '\n') --line;
        m_iLine += static_cast<std::int64_t>(lines);
        m_iColumn = 1;
    } else if (*begin == '\n' && isAfterCR()) {
        ++line;
    }
    m_iColumn += end - line;
    m_cBefore = static_cast<unsigned char>(end[-1]);
}

void I18NTextPosition::passSequence() {
    ++m_iColumn;
    m_cBefore = 0;
}
