#ifndef I18N_CPP_CONVERTER_I18N_PLAIN_ASCII_HPP
#define I18N_CPP_CONVERTER_I18N_PLAIN_ASCII_HPP

#include <emmintrin.h>

#include <algorithm>
#include <iterator>

/// The ASCII characters whose bytes in an encoding are the same as in ASCII: all except a few. Such
/// a byte means this character if a character begins with it. It may also be a later byte of
/// another character.
class I18NPlainASCII {
public:
    /// Excludes a character.
    /// @return false if kMostOdd characters are already excluded
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

/// Finds these characters in blocks of 16 bytes.
class I18NPlainBlocks {
public:
    explicit I18NPlainBlocks(const I18NPlainASCII& plain)
        : m_bIsAll(plain.odd()[0] >= 0x80),
          m_odd{all(plain.odd()[0]), all(plain.odd()[1]), all(plain.odd()[2])} {}

    /// Returns a mask in which the bits of all other bytes are set.
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
