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
    static constexpr int kMostOdd = 3;
    const unsigned char (&odd() const)[kMostOdd] { return m_odd; }

private:
    static constexpr unsigned char kNone = 0xFF;
    unsigned char m_odd[kMostOdd] = {kNone, kNone, kNone};
};

/// Finds these characters in blocks.
class I18NPlainBlocks {
public:
    explicit I18NPlainBlocks(const I18NPlainASCII& plain)
        : m_bIsAll(plain.odd()[0] >= 0x80),
          m_odd{all(plain.odd()[0]), all(plain.odd()[1]), all(plain.odd()[2])} {}

    /// Returns a bit for each byte of a block that is none of them.
    unsigned others(__m128i block) const {
        if (!m_bIsAll) {
            const __m128i odd = _mm_or_si128(
                _mm_cmpeq_epi8(block, m_odd[0]),
                _mm_or_si128(_mm_cmpeq_epi8(block, m_odd[1]), _mm_cmpeq_epi8(block, m_odd[2])));
            block = _mm_or_si128(block, odd);
        }
        return static_cast<unsigned>(_mm_movemask_epi8(block));
    }

private:
    static __m128i all(unsigned char byte) { return _mm_set1_epi8(static_cast<char>(byte)); }

    const bool m_bIsAll;
    const __m128i m_odd[I18NPlainASCII::kMostOdd];
};

#endif
