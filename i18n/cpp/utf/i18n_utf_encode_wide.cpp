#include <immintrin.h>

#include "i18n/cpp/utf/i18n_utf_blocks.hpp"

// The algorithm of i18n_utf_encode_blocks.cpp, 16 units at a time. Most AVX2 instructions work on
// each half of a register separately.

namespace {

constexpr int kBlock = 16;

I18N_WITH_WIDE_BLOCKS inline __m256i all(int unit) {
    return _mm256_set1_epi16(static_cast<short>(unit));
}
I18N_WITH_WIDE_BLOCKS inline unsigned maskOf(__m256i bytes) {
    return static_cast<unsigned>(_mm256_movemask_epi8(bytes));
}

I18N_WITH_WIDE_BLOCKS inline __m256i isWithin(__m256i units, int limit) {
    return _mm256_cmpeq_epi16(_mm256_andnot_si256(all(limit), units), _mm256_setzero_si256());
}

/// Shuffles and writes half a register; only the first `size` bytes count.
I18N_WITH_WIDE_BLOCKS inline char* write(char* out, __m128i bytes, const I18NShuffles& shuffles,
                                         unsigned mask, int size) {
    i18nStore(out, _mm_shuffle_epi8(bytes, i18nLoad(shuffles.bytes[mask])));
    return out + size;
}

I18N_WITH_WIDE_BLOCKS inline char* writeFour(char* out, __m128i bytes, unsigned mask) {
    return write(out, bytes, i18nEncodingShuffles.triples, mask, 4 + __builtin_popcount(mask));
}

/// Encodes sixteen units below U+0800.
I18N_WITH_WIDE_BLOCKS inline void encodePairs(I18NEncoding& encoding, __m256i units,
                                              __m256i ascii) {
    const __m256i lead = _mm256_or_si256(_mm256_srli_epi16(units, 6), all(0x80C0));
    const __m256i trail = _mm256_slli_epi16(_mm256_and_si256(units, all(0x3F)), 8);
    const __m256i bytes = _mm256_blendv_epi8(_mm256_or_si256(lead, trail), units, ascii);
    const unsigned mask = maskOf(_mm256_packs_epi16(ascii, ascii));
    const unsigned mask0 = mask & 0xFF, mask1 = mask >> 16 & 0xFF;
    char* out = write(encoding.out, _mm256_castsi256_si128(bytes), i18nEncodingShuffles.pairs,
                      mask0, 16 - __builtin_popcount(mask0));
    encoding.out = write(out, _mm256_extracti128_si256(bytes, 1), i18nEncodingShuffles.pairs, mask1,
                         16 - __builtin_popcount(mask1));
    encoding.at += kBlock;
}

/// The three bytes of each unit. Units of two bytes have no first byte. Units of one byte have no
/// first and no middle byte.
struct Triples {
    __m256i first, middle, last;
    __m256i two, three;  ///< whether the unit has at least that many bytes
};

I18N_WITH_WIDE_BLOCKS inline Triples triplesOf(__m256i units, __m256i ascii) {
    const __m256i six = all(0x3F), one = all(0x80);
    const __m256i below800 = isWithin(units, 0x7FF);
    Triples made;
    made.first = _mm256_or_si256(_mm256_srli_epi16(units, 12), all(0xE0));
    made.middle = _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(units, 6), six),
                                  _mm256_blendv_epi8(one, all(0xC0), below800));
    made.last =
        _mm256_blendv_epi8(_mm256_or_si256(_mm256_and_si256(units, six), one), units, ascii);
    made.two = _mm256_andnot_si256(ascii, all(-1));
    made.three = _mm256_andnot_si256(below800, all(-1));
    return made;
}

/// Sets the two bytes of each half of a pair.
I18N_WITH_WIDE_BLOCKS inline void setHalves(Triples& triples, __m256i units, __m256i highs,
                                            __m256i lows) {
    const __m256i six = all(0x3F), one = all(0x80);
    // The first half holds the bits of the code point from bit 10 on.
    const __m256i upper = _mm256_sub_epi16(units, all(0xD7C0));
    const __m256i lastOfHigh =
        _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(upper, 2), six), one);
    triples.last = _mm256_blendv_epi8(triples.last, lastOfHigh, highs);
    const __m256i ofHigh = _mm256_or_si256(_mm256_srli_epi16(upper, 8), all(0xF0));
    triples.middle = _mm256_blendv_epi8(triples.middle, ofHigh, highs);
    const __m256i before =
        _mm256_alignr_epi8(units, _mm256_permute2x128_si256(units, units, 0x08), 14);
    const __m256i shared = _mm256_slli_epi16(_mm256_and_si256(before, all(3)), 4);
    const __m256i own = _mm256_and_si256(_mm256_srli_epi16(units, 6), all(0x0F));
    triples.middle = _mm256_blendv_epi8(triples.middle,
                                        _mm256_or_si256(_mm256_or_si256(own, one), shared), lows);
    triples.three = _mm256_andnot_si256(_mm256_or_si256(highs, lows), triples.three);
}

I18N_WITH_WIDE_BLOCKS inline char* write(char* out, const Triples& triples) {
    const __m256i rest = _mm256_or_si256(triples.middle, _mm256_slli_epi16(triples.last, 8));
    const unsigned mask =
        maskOf(_mm256_packs_epi16(_mm256_unpacklo_epi16(triples.two, triples.three),
                                  _mm256_unpackhi_epi16(triples.two, triples.three)));
    const __m256i even = _mm256_unpacklo_epi16(rest, triples.first);
    const __m256i odd = _mm256_unpackhi_epi16(rest, triples.first);
    out = writeFour(out, _mm256_castsi256_si128(even), mask & 0xFF);
    out = writeFour(out, _mm256_castsi256_si128(odd), mask >> 8 & 0xFF);
    out = writeFour(out, _mm256_extracti128_si256(even, 1), mask >> 16 & 0xFF);
    return writeFour(out, _mm256_extracti128_si256(odd, 1), mask >> 24);
}

/// Encodes sixteen units, or fifteen if the last is the first half of a pair.
/// @return false for ill-formed text; nothing is encoded then
I18N_WITH_WIDE_BLOCKS __attribute__((always_inline)) inline bool encodeTriples(
    I18NEncoding& encoding, __m256i units, __m256i ascii) {
    const __m256i top = _mm256_and_si256(units, all(0xFC00));
    const __m256i highs = _mm256_cmpeq_epi16(top, all(0xD800));
    const __m256i lows = _mm256_cmpeq_epi16(top, all(0xDC00));
    // For each half of the register: eight bits for first halves of pairs, and eight for second
    // halves.
    const unsigned pairs = maskOf(_mm256_packs_epi16(highs, lows));
    if (pairs == 0) {
        encoding.out = write(encoding.out, triplesOf(units, ascii));
        encoding.at += kBlock;
        return true;
    }
    const unsigned high = (pairs & 0xFF) | (pairs >> 8 & 0xFF00);
    const unsigned low = (pairs >> 8 & 0xFF) | (pairs >> 16 & 0xFF00);
    if ((high << 1 & 0xFFFF) != low) return false;
    const int left = static_cast<int>(high >> 15);
    encoding.at += kBlock - left;
    Triples triples = triplesOf(units, ascii);
    setHalves(triples, units, highs, lows);
    encoding.out = write(encoding.out, triples) - left * 2;
    return true;
}

}  // namespace

// Each remaining unit gives at least one byte, so 16 bytes may be written after the last four units
// of a block.
I18N_WITH_WIDE_BLOCKS void i18nEncodeWideBlocks(I18NEncoding& encoding) {
    I18NEncoding now = encoding;
    bool good = true;
    while (good && now.end - now.at >= 2 * kBlock) {
        const __m256i units = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(now.at));
        const __m256i ascii = isWithin(units, 0x7F);
        if (maskOf(ascii) == 0xFFFFFFFF) {
            i18nStore(now.out, _mm_packus_epi16(_mm256_castsi256_si128(units),
                                                _mm256_extracti128_si256(units, 1)));
            now.at += kBlock;
            now.out += kBlock;
        } else if (maskOf(isWithin(units, 0x7FF)) == 0xFFFFFFFF) {
            encodePairs(now, units, ascii);
        } else {
            good = encodeTriples(now, units, ascii);
        }
    }
    encoding = now;
}
