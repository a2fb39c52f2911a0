#include "i18n/cpp/utf/i18n_utf.hpp"
#include "i18n/cpp/utf/i18n_utf_blocks.hpp"

namespace {

constexpr int kBlock = 16;

/// For eight units: moves the units whose bit is set to the front.
constexpr I18NShuffles makeKeeping() {
    I18NShuffles made{};
    for (unsigned mask = 0; mask < 256; ++mask) {
        unsigned to = 0;
        for (unsigned unit = 0; unit < 8; ++unit) {
            if ((mask >> unit & 1) == 0) continue;
            made.bytes[mask][to++] = static_cast<std::uint8_t>(unit * 2);
            made.bytes[mask][to++] = static_cast<std::uint8_t>(unit * 2 + 1);
        }
        while (to < 16) made.bytes[mask][to++] = 0x80;
    }
    return made;
}

struct Decoding : I18NDecoding {
    /// Not all 0 if i18nMayNeedNormalization() is true for any character.
    __m128i mayNeedNormalization = _mm_setzero_si128();
};

I18N_WITH_SHUFFLES inline __m128i atLeast(__m128i bytes, int least) {
    return _mm_cmpeq_epi8(_mm_max_epu8(bytes, i18nBytes(least)), bytes);
}

/// Marks first trail bytes that make a sequence overlong, a surrogate, or more than U+10FFFF: trail
/// bytes below `limit` after `leadOfHigh`, and the other trail bytes after `leadOfLow`.
I18N_WITH_SHUFFLES inline __m128i badTrails(__m128i block, __m128i before, int leadOfHigh,
                                            int leadOfLow, int limit) {
    const __m128i low = _mm_cmplt_epi8(block, i18nBytes(limit));
    return _mm_or_si128(_mm_and_si128(low, _mm_cmpeq_epi8(before, i18nBytes(leadOfHigh))),
                        _mm_andnot_si128(low, _mm_cmpeq_epi8(before, i18nBytes(leadOfLow))));
}

/// Not 0 in the bytes of two-byte characters for which i18nMayNeedNormalization() is true.
I18N_WITH_SHUFFLES inline __m128i beyondInert(__m128i low, __m128i high) {
    // For each upper byte of a character: half of the lowest lower byte for which
    // i18nMayNeedNormalization() is true; -1 if there is no such byte.
    static_assert(kI18NInertBelow == 0x300 && kI18NInertFrom == 0x400 && kI18NInertBehind == 0x482,
                  "the table below has them");
    const __m128i from = _mm_setr_epi8(-1, -1, -1, 0, 0x82 / 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    const __m128i half = _mm_and_si128(_mm_srli_epi16(low, 1), i18nBytes(0x7F));
    return _mm_cmpeq_epi8(_mm_max_epu8(half, _mm_shuffle_epi8(from, high)), half);
}

I18N_WITH_SHUFFLES inline void keep(Decoding& decoding, __m128i units, unsigned mask) {
    i18nStore(decoding.out, _mm_shuffle_epi8(units, i18nLoad(i18nKeepingShuffles.bytes[mask])));
    decoding.out += __builtin_popcount(mask);
}

/// Decodes the sequences that begin and end in a block, none longer than kLongest. Computes a unit
/// at each byte, from this byte and the bytes before it. The unit is correct at the last byte of a
/// sequence. In a sequence of four bytes, the unit is also correct at the third byte, which gives
/// the first half of the pair.
/// @return false for ill-formed text; nothing is decoded then
template <int kLongest>
I18N_WITH_SHUFFLES inline bool decodeBlock(Decoding& decoding, __m128i block, __m128i leads3) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i trails = _mm_cmplt_epi8(block, i18nBytes(0xC0));
    const __m128i before1 = _mm_slli_si128(block, 1);
    const __m128i before2 = _mm_slli_si128(block, 2);
    const __m128i isHigh = kLongest < 4 ? zero : atLeast(before2, 0xF0);

    // Bit masks of positions; the lead byte of a longer sequence also counts as the lead byte of a
    // shorter sequence.
    const unsigned trail = i18nMask(trails);
    const unsigned lead2 = i18nMask(block) & ~trail;
    const unsigned lead3 = kLongest < 3 ? 0 : i18nMask(leads3);
    const unsigned lead4 = kLongest < 4 ? 0 : i18nMask(atLeast(block, 0xF0));
    __m128i bad =
        _mm_or_si128(_mm_cmpeq_epi8(block, zero),
                     _mm_cmpeq_epi8(_mm_and_si128(block, i18nBytes(0xFE)), i18nBytes(0xC0)));
    if (kLongest >= 3) bad = _mm_or_si128(bad, badTrails(block, before1, 0xE0, 0xED, 0xA0));
    if (kLongest >= 4) {
        bad = _mm_or_si128(bad, badTrails(block, before1, 0xF0, 0xF4, 0x90));
        bad = _mm_or_si128(bad, atLeast(block, 0xF5));
    }
    const unsigned expected = (lead2 << 1 | lead3 << 2 | lead4 << 3) & 0xFFFF;
    if ((i18nMask(bad) | (trail ^ expected)) != 0) return false;

    // A sequence that continues after the block is left for the next block.
    const unsigned left =
        (lead2 >> 15) + (lead3 >> 13 & 2) + (kLongest < 4 ? 0 : (lead4 >> 13 & 1) * 3);
    const unsigned kept = ~(lead2 | lead3 << 1) & (0xFFFFU >> left);

    const __m128i middle = _mm_and_si128(before1, trails);
    __m128i low = _mm_or_si128(_mm_andnot_si128(_mm_and_si128(trails, i18nBytes(0xC0)), block),
                               _mm_and_si128(_mm_slli_epi16(middle, 6), i18nBytes(0xC0)));
    __m128i high = _mm_and_si128(_mm_srli_epi16(middle, 2), i18nBytes(0x0F));
    if (kLongest >= 3) {
        const __m128i first = _mm_and_si128(before2, atLeast(before2, 0xE0));
        high = _mm_or_si128(high, _mm_and_si128(_mm_slli_epi16(first, 4), i18nBytes(0xF0)));
    }
    if (kLongest >= 4) {
        // The first half holds the bits of the code point from bit 10 on, minus 0x40.
        const __m128i upper =
            _mm_or_si128(_mm_and_si128(_mm_slli_epi16(before1, 2), i18nBytes(0xFC)),
                         _mm_and_si128(_mm_srli_epi16(block, 4), i18nBytes(0x03)));
        low = i18nBlend(low, upper, isHigh);
        high = i18nBlend(high, _mm_and_si128(before2, i18nBytes(0x07)), isHigh);
        const __m128i isLow = _mm_slli_si128(isHigh, 1);
        high = i18nBlend(high, _mm_or_si128(_mm_and_si128(high, i18nBytes(0x03)), i18nBytes(0xDC)),
                         isLow);
    }
    decoding.mayNeedNormalization = _mm_or_si128(
        decoding.mayNeedNormalization, kLongest >= 3 ? i18nBytes(1) : beyondInert(low, high));
    __m128i units0 = _mm_unpacklo_epi8(low, high), units1 = _mm_unpackhi_epi8(low, high);
    if (kLongest >= 4) {
        const __m128i base = i18nUnits(0xD7C0);
        units0 = _mm_add_epi16(units0, _mm_and_si128(_mm_unpacklo_epi8(isHigh, isHigh), base));
        units1 = _mm_add_epi16(units1, _mm_and_si128(_mm_unpackhi_epi8(isHigh, isHigh), base));
    }
    keep(decoding, units0, kept & 0xFF);
    keep(decoding, units1, kept >> 8);
    decoding.at += kBlock - left;
    return true;
}

I18N_WITH_SHUFFLES inline void widen(Decoding& decoding, __m128i block) {
    i18nStore(decoding.out, _mm_unpacklo_epi8(block, _mm_setzero_si128()));
    i18nStore(decoding.out + kBlock / 2, _mm_unpackhi_epi8(block, _mm_setzero_si128()));
    decoding.at += kBlock;
    decoding.out += kBlock;
}

}  // namespace

constexpr I18NShuffles i18nKeepingShuffles = makeKeeping();

// While a whole block is left to read, there is room for the units of a whole block.
I18N_WITH_SHUFFLES void i18nDecodeBlocks(I18NDecoding& decoding) {
    Decoding now;
    static_cast<I18NDecoding&>(now) = decoding;
    bool good = true;
    while (good && now.end - now.at >= kBlock) {
        const __m128i block = i18nLoad(now.at);
        if (now.end - now.at >= 2 * kBlock) {
            const __m128i next = i18nLoad(now.at + kBlock);
            if (i18nMask(_mm_or_si128(block, next)) == 0) {
                const __m128i nul = _mm_cmpeq_epi8(_mm_min_epu8(block, next), _mm_setzero_si128());
                if (i18nMask(nul) != 0) break;
                widen(now, block);
                widen(now, next);
                continue;
            }
        }
        const __m128i leads3 = atLeast(block, 0xE0);
        if (i18nMask(leads3) == 0)
            good = decodeBlock<2>(now, block, leads3);
        else if (i18nMask(atLeast(block, 0xF0)) == 0)
            good = decodeBlock<3>(now, block, leads3);
        else
            good = decodeBlock<4>(now, block, leads3);
    }
    const __m128i none = _mm_cmpeq_epi8(now.mayNeedNormalization, _mm_setzero_si128());
    if (i18nMask(none) != 0xFFFF) now.doubt(decoding.out, now.out);
    decoding = now;
}
