#include "i18n/cpp/utf/i18n_utf_blocks.hpp"

namespace {

constexpr int kBlock = 8;

/// For units of one or two bytes: removes the second byte of the units whose bit is set.
constexpr I18NShuffles makePairs() {
    I18NShuffles made{};
    for (unsigned mask = 0; mask < 256; ++mask) {
        unsigned to = 0;
        for (unsigned unit = 0; unit < 8; ++unit) {
            made.bytes[mask][to++] = static_cast<std::uint8_t>(unit * 2);
            if ((mask >> unit & 1) == 0)
                made.bytes[mask][to++] = static_cast<std::uint8_t>(unit * 2 + 1);
        }
        while (to < 16) made.bytes[mask][to++] = 0x80;
    }
    return made;
}

/// For four units of up to three bytes, with two bits each: the first bit is set if the unit has at
/// least two bytes, the second if it has three. Each unit has four positions: the byte before the
/// last, the last byte, the first byte, and an unused position.
constexpr I18NShuffles makeTriples() {
    I18NShuffles made{};
    for (unsigned mask = 0; mask < 256; ++mask) {
        unsigned to = 0;
        for (unsigned unit = 0; unit < 4; ++unit) {
            const unsigned bits = mask >> (unit * 2) & 3;
            if ((bits & 2) != 0) made.bytes[mask][to++] = static_cast<std::uint8_t>(unit * 4 + 2);
            if ((bits & 1) != 0) made.bytes[mask][to++] = static_cast<std::uint8_t>(unit * 4);
            made.bytes[mask][to++] = static_cast<std::uint8_t>(unit * 4 + 1);
        }
        while (to < 16) made.bytes[mask][to++] = 0x80;
    }
    return made;
}

}  // namespace

const I18NEncodingShuffles i18nEncodingShuffles = {makePairs(), makeTriples()};

namespace {

/// Marks the units that are not above a limit, which is one less than a power of two.
I18N_WITH_SHUFFLES inline __m128i isWithin(__m128i units, int limit) {
    return _mm_cmpeq_epi16(_mm_andnot_si128(i18nUnits(limit), units), _mm_setzero_si128());
}

I18N_WITH_SHUFFLES inline void write(I18NEncoding& encoding, __m128i bytes,
                                     const I18NShuffles& shuffles, unsigned mask, unsigned size) {
    i18nStore(encoding.out, _mm_shuffle_epi8(bytes, i18nLoad(shuffles.bytes[mask])));
    encoding.out += size;
}

/// Encodes eight units below U+0800.
I18N_WITH_SHUFFLES inline void encodePairs(I18NEncoding& encoding, __m128i units, __m128i ascii) {
    const __m128i lead = _mm_or_si128(_mm_srli_epi16(units, 6), i18nUnits(0x80C0));
    const __m128i trail = _mm_slli_epi16(_mm_and_si128(units, i18nUnits(0x3F)), 8);
    const __m128i bytes = i18nBlend(_mm_or_si128(lead, trail), units, ascii);
    const unsigned mask = i18nMask(_mm_packs_epi16(ascii, ascii)) & 0xFF;
    write(encoding, bytes, i18nEncodingShuffles.pairs, mask,
          16 - static_cast<unsigned>(__builtin_popcount(mask)));
    encoding.at += kBlock;
}

/// Encodes eight units, or seven if the last is the first half of a pair. Each half of a pair has
/// two bytes.
/// @return false for ill-formed text; nothing is encoded then
I18N_WITH_SHUFFLES inline bool encodeTriples(I18NEncoding& encoding, __m128i units, __m128i ascii) {
    const __m128i top = _mm_and_si128(units, i18nUnits(0xFC00));
    const __m128i highs = _mm_cmpeq_epi16(top, i18nUnits(0xD800));
    const __m128i lows = _mm_cmpeq_epi16(top, i18nUnits(0xDC00));
    const __m128i below800 = isWithin(units, 0x7FF);
    const __m128i six = i18nUnits(0x3F);
    __m128i first = _mm_or_si128(_mm_srli_epi16(units, 12), i18nUnits(0xE0));
    __m128i last =
        i18nBlend(_mm_or_si128(_mm_and_si128(units, six), i18nUnits(0x80)), units, ascii);
    __m128i middle = _mm_or_si128(_mm_and_si128(_mm_srli_epi16(units, 6), six),
                                  i18nBlend(i18nUnits(0x80), i18nUnits(0xC0), below800));
    __m128i three = _mm_andnot_si128(below800, i18nUnits(-1));
    unsigned done = kBlock;
    const __m128i surrogates = _mm_or_si128(highs, lows);
    if (i18nMask(surrogates) != 0) {
        const unsigned pairs = i18nMask(_mm_packs_epi16(highs, lows));
        const unsigned high = pairs & 0xFF, low = pairs >> 8;
        if (((high << 1) & 0xFF) != low) return false;
        done -= high >> 7;
        // The first half holds the bits of the code point from bit 10 on.
        const __m128i upper = _mm_sub_epi16(units, i18nUnits(0xD7C0));
        const __m128i shared =
            _mm_slli_epi16(_mm_and_si128(_mm_slli_si128(units, 2), i18nUnits(3)), 4);
        const __m128i ofHigh = _mm_or_si128(_mm_srli_epi16(upper, 8), i18nUnits(0xF0));
        const __m128i ofLow = _mm_or_si128(
            _mm_or_si128(_mm_and_si128(_mm_srli_epi16(units, 6), i18nUnits(0x0F)), i18nUnits(0x80)),
            shared);
        middle = i18nBlend(i18nBlend(middle, ofHigh, highs), ofLow, lows);
        last = i18nBlend(
            last, _mm_or_si128(_mm_and_si128(_mm_srli_epi16(upper, 2), six), i18nUnits(0x80)),
            highs);
        three = _mm_andnot_si128(surrogates, three);
    }
    const __m128i two = _mm_andnot_si128(ascii, i18nUnits(-1));
    const unsigned mask =
        i18nMask(_mm_packs_epi16(_mm_unpacklo_epi16(two, three), _mm_unpackhi_epi16(two, three)));
    const __m128i rest = _mm_or_si128(middle, _mm_slli_epi16(last, 8));
    const unsigned mask0 = mask & 0xFF, mask1 = mask >> 8;
    write(encoding, _mm_unpacklo_epi16(rest, first), i18nEncodingShuffles.triples, mask0,
          4 + static_cast<unsigned>(__builtin_popcount(mask0)));
    write(encoding, _mm_unpackhi_epi16(rest, first), i18nEncodingShuffles.triples, mask1,
          4 + static_cast<unsigned>(__builtin_popcount(mask1)) - (kBlock - done) * 2);
    encoding.at += done;
    return true;
}

}  // namespace

// Each remaining unit gives at least one byte, so 16 bytes may be written after the first half of a
// block.
I18N_WITH_SHUFFLES void i18nEncodeBlocks(I18NEncoding& encoding) {
    I18NEncoding now = encoding;
    bool good = true;
    while (good && now.end - now.at >= 3 * kBlock) {
        const __m128i units = i18nLoad(now.at), next = i18nLoad(now.at + kBlock);
        const __m128i ascii = isWithin(units, 0x7F);
        if (i18nMask(_mm_and_si128(ascii, isWithin(next, 0x7F))) == 0xFFFF) {
            i18nStore(now.out, _mm_packus_epi16(units, next));
            now.at += 2 * kBlock;
            now.out += 2 * kBlock;
        } else if (i18nMask(isWithin(units, 0x7FF)) == 0xFFFF) {
            encodePairs(now, units, ascii);
        } else {
            good = encodeTriples(now, units, ascii);
        }
    }
    encoding = now;
}
