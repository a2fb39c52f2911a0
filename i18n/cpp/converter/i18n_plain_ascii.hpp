#ifndef I18N_CPP_CONVERTER_I18N_PLAIN_ASCII_HPP
#define I18N_CPP_CONVERTER_I18N_PLAIN_ASCII_HPP

#include <emmintrin.h>

#include <algorithm>
#include <iterator>

/// The ASCII characters that an encoding expresses by their own bytes: all but a few. Such bytes
/// mean these characters wherever a character begins; they may also be later bytes of others.
class I18NPlainASCII {
public:
    /// Takes out one character.
    /// @return false if too many are out
    bool exclude(unsigned char c) {
        auto* const free = std::find(std::begin(m_odd), std::end(m_odd), kNone);
        if (free == std::end(m_odd)) return false;
        *free = c;
        return true;
    }
    bool has(unsigned c) const {
        return c < 0x80 && c != m_odd[0] && c != m_odd[1] && c != m_odd[2];
    }
    /// Returns a bit for each byte of a block that is none of these characters.
    unsigned others(__m128i block) const {
        if (m_odd[0] == kNone) return static_cast<unsigned>(_mm_movemask_epi8(block));
        const auto is = [block](unsigned char c) {
            return _mm_cmpeq_epi8(block, _mm_set1_epi8(static_cast<char>(c)));
        };
        const __m128i odd = _mm_or_si128(_mm_or_si128(is(m_odd[0]), is(m_odd[1])), is(m_odd[2]));
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(block, odd)));
    }

    static constexpr int kMostOdd = 3;
    const unsigned char (&odd() const)[kMostOdd] { return m_odd; }

private:
    static constexpr unsigned char kNone = 0xFF;
    unsigned char m_odd[kMostOdd] = {kNone, kNone, kNone};
};

#endif
