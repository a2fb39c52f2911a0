// Decodes UTF-8 by blocks of 64 bytes with the algorithm of i18n_utf_decode_avx2.cpp, for
// processors with AVX-512 that compress bytes in a register (VBMI2). Loads and stores have masks,
// so a text shorter than a block is decoded in place.
//
// 32-bit code moves a mask of 64 bits through memory for each operation on the mask. This takes
// longer than all other work for the block. Therefore sets of bytes that are combined, or compared
// with the empty set, are stored as the top bits of vectors, not as masks.
#if defined(__GNUC__) && !defined(__clang__)
// GCC 12 reports values that its own header leaves undefined on purpose.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include "i18n/cpp/utf/i18n_utf_blocks.hpp"
#include "i18n/cpp/utf/i18n_utf_nibbles.hpp"

#define INLINE_WIDEST I18N_WITH_WIDEST_BLOCKS __attribute__((always_inline)) inline

namespace {

constexpr int kBlock = 64;

INLINE_WIDEST __m512i all(int value) { return _mm512_set1_epi8(static_cast<char>(value)); }
/// Looks up the lower half of each byte. The upper half has no influence: the instruction uses six
/// bits, and the table is repeated four times.
INLINE_WIDEST __m512i lookUp(const std::uint8_t (&table)[16], __m512i bytes) {
    return _mm512_permutexvar_epi8(bytes, _mm512_broadcast_i32x4(i18nLoad(table)));
}
/// Moves the upper half of each byte to its lower half and leaves other bits in the upper half.
INLINE_WIDEST __m512i upperHalves(__m512i bytes) { return _mm512_srli_epi16(bytes, 4); }
/// Returns bytes whose top bit is set where `bytes` is at least `least`; their other bits are
/// arbitrary. Requires: `least` is at least 0x80.
INLINE_WIDEST __m512i fromOn(__m512i bytes, int least) {
    return _mm512_subs_epu8(bytes, all(least - 0x80));
}
INLINE_WIDEST bool hasTops(__m512i bytes) { return _mm512_test_epi32_mask(bytes, all(0x80)) != 0; }
/// 1 where a byte is 0, else 0.
INLINE_WIDEST __m512i zeros(__m512i bytes) { return _mm512_subs_epu8(all(1), bytes); }
INLINE_WIDEST bool isNull(__m512i bytes) { return _mm512_test_epi32_mask(bytes, bytes) == 0; }
INLINE_WIDEST __m512i andThree(__m512i a, __m512i b, __m512i c) {
    return _mm512_ternarylogic_epi32(a, b, c, 0x80);
}
/// Takes bits from a where the mask's bits are set, else from b.
INLINE_WIDEST __m512i choose(__m512i mask, __m512i a, __m512i b) {
    return _mm512_ternarylogic_epi32(mask, a, b, 0xCA);
}
/// Returns a mask of the first `count` bits, at most 64.
INLINE_WIDEST __mmask64 firstBits(std::ptrdiff_t count) {
    return count >= kBlock ? ~__mmask64{0} : (__mmask64{1} << count) - 1;
}

/// A block. At each byte of the block, before1, before2 and before3 have the bytes one, two and
/// three places before it.
struct Block {
    __m512i at, before1, before2, before3;
};
INLINE_WIDEST Block blockOf(__m512i previous, __m512i at) {
    const __m512i joint = _mm512_alignr_epi32(at, previous, 12);
    return {at, _mm512_alignr_epi8(at, joint, 15), _mm512_alignr_epi8(at, joint, 14),
            _mm512_alignr_epi8(at, joint, 13)};
}

/// Returns true if the block has a NUL or an ill-formed sequence. The end of a sequence that
/// continues in the next block is checked with that block.
INLINE_WIDEST bool stops(const Block& block) {
    const I18NNibbleTables& tables = kI18NIllFormedTables;
    const __m512i found = andThree(lookUp(tables.firstHigh, upperHalves(block.before1)),
                                   lookUp(tables.firstLow, block.before1),
                                   lookUp(tables.secondHigh, upperHalves(block.at)));
    // Two trail bytes must follow each other at these places and nowhere else.
    const __m512i later = _mm512_or_si512(fromOn(block.before2, 0xE0), fromOn(block.before3, 0xF0));
    const __m512i wrong = _mm512_xor_si512(found, _mm512_and_si512(later, all(0x80)));
    return !isNull(_mm512_or_si512(wrong, zeros(block.at)));
}

/// The lower and the upper byte of the unit at each place.
struct Units {
    __m512i low, high;
};
INLINE_WIDEST Units unitsOf(const Block& block) {
    const __mmask64 trails = _mm512_cmplt_epi8_mask(block.at, all(0xC0));
    const __m512i middle = _mm512_maskz_mov_epi8(trails, block.before1);
    const __m512i first = _mm512_subs_epu8(block.before2, all(0xE0));
    return {_mm512_mask_blend_epi8(trails, block.at,
                                   choose(all(0x3F), block.at, _mm512_slli_epi16(middle, 6))),
            choose(all(0xF0), _mm512_slli_epi16(first, 4),
                   _mm512_and_si512(_mm512_srli_epi16(middle, 2), all(0x0F)))};
}

/// Puts the halves of surrogate pairs into the units. The first half has the upper ten bits of the
/// code point minus 0x10000.
INLINE_WIDEST void setHalves(Units& units, const Block& block) {
    const __mmask64 isFirst = _mm512_movepi8_mask(fromOn(block.before2, 0xF0));
    const __mmask64 isSecond = _mm512_movepi8_mask(fromOn(block.before3, 0xF0));
    const __m512i upper = choose(all(0xFC), _mm512_slli_epi16(block.before1, 2),
                                 _mm512_and_si512(_mm512_srli_epi16(block.at, 4), all(0x03)));
    const __m512i top = _mm512_add_epi8(_mm512_and_si512(block.before2, all(0x07)), all(0xD8));
    const __mmask64 borrows = _mm512_testn_epi8_mask(block.before1, all(0x30));
    units.low = _mm512_mask_sub_epi8(units.low, isFirst, upper, all(0x40));
    units.high = _mm512_mask_blend_epi8(isFirst, units.high,
                                        _mm512_mask_sub_epi8(top, borrows, top, all(1)));
    units.high =
        _mm512_mask_blend_epi8(isSecond, units.high, choose(all(0x03), units.high, all(0xDC)));
}

/// Returns true if some unit may not be inert.
INLINE_WIDEST bool isDoubtful(const I18NNibbleTables& tables, const Units& units) {
    const __m512i upper = _mm512_and_si512(lookUp(tables.firstHigh, upperHalves(units.high)),
                                           lookUp(tables.firstLow, units.high));
    const __m512i inert = andThree(upper, lookUp(tables.secondHigh, upperHalves(units.low)),
                                   lookUp(tables.secondLow, units.low));
    return !isNull(zeros(inert));
}

/// Indexes that join lower bytes (0 to 63) and upper bytes (from 64 on) to units.
struct alignas(64) Order {
    std::uint8_t first[kBlock], second[kBlock];
};
constexpr Order makeOrder() {
    Order made{};
    for (int i = 0; i < kBlock; ++i) {
        made.first[i] = static_cast<std::uint8_t>(i / 2 + i % 2 * kBlock);
        made.second[i] = static_cast<std::uint8_t>(made.first[i] + kBlock / 2);
    }
    return made;
}
constexpr Order kOrder = makeOrder();
INLINE_WIDEST __m512i loadOrder(const std::uint8_t (&order)[kBlock]) {
    return _mm512_load_si512(order);
}

/// Writes the first `count` units if kExactly is true, else all 64 units.
template <bool kExactly>
INLINE_WIDEST void write(char16_t* out, const Units& units, std::ptrdiff_t count) {
    const __m512i units0 = _mm512_permutex2var_epi8(units.low, loadOrder(kOrder.first), units.high);
    const __m512i units1 =
        _mm512_permutex2var_epi8(units.low, loadOrder(kOrder.second), units.high);
    if (!kExactly) {
        _mm512_storeu_si512(out, units0);
        _mm512_storeu_si512(out + kBlock / 2, units1);
        return;
    }
    const __mmask64 mask = firstBits(count);
    _mm512_mask_storeu_epi16(out, static_cast<__mmask32>(mask), units0);
    if (count > kBlock / 2)
        _mm512_mask_storeu_epi16(out + kBlock / 2, static_cast<__mmask32>(mask >> 32), units1);
}

/// @param outside  top bits at the bytes of the block that do not belong to the text
/// @return false if the block stops the kernel; nothing is decoded then
template <bool kPairs, bool kExactly>
INLINE_WIDEST bool decode(I18NDecoding& decoding, const Block& block, __m512i outside) {
    if (stops(block)) return false;
    Units units = unitsOf(block);
    if (kPairs) setHalves(units, block);
    __m512i dropped = _mm512_or_si512(fromOn(block.at, 0xC0), fromOn(block.before1, 0xE0));
    if (kExactly) dropped = _mm512_or_si512(dropped, outside);
    const __mmask64 kept = _mm512_movepi8_mask(_mm512_xor_si512(dropped, all(0x80)));
    units = {_mm512_maskz_compress_epi8(kept, units.low),
             _mm512_maskz_compress_epi8(kept, units.high)};
    const int count = kBlock - __builtin_popcountll(_mm512_movepi8_mask(dropped));
    write<kExactly>(decoding.out, units, count);
    if (isDoubtful(kPairs ? kI18NInertWithPairsTables : kI18NInertTables, units))
        decoding.doubt(decoding.out, decoding.out + count);
    decoding.out += count;
    return true;
}

template <bool kExactly>
INLINE_WIDEST bool decode(I18NDecoding& decoding, const Block& block, __m512i outside) {
    const bool pairs = hasTops(fromOn(_mm512_max_epu8(block.at, block.before3), 0xF0));
    return pairs ? decode<true, kExactly>(decoding, block, outside)
                 : decode<false, kExactly>(decoding, block, outside);
}

/// Returns true if the last sequence of a block ends in the next block.
INLINE_WIDEST bool goesOn(__m512i block) {
    const auto last =
        static_cast<unsigned>(_mm_extract_epi32(_mm512_extracti32x4_epi32(block, 3), 3));
    return last >= 0xC0000000 || (last & 0xFF0000) >= 0xE00000 || (last & 0xFF00) >= 0xF000;
}

/// Returns true if all bytes are ASCII and none is NUL.
INLINE_WIDEST bool isPlain(__m512i block) {
    const __mmask64 others = _mm512_cmple_epi8_mask(block, _mm512_setzero_si512());
    return _kortestz_mask64_u8(others, others) != 0;
}
INLINE_WIDEST void widen(char16_t* out, __m512i block) {
    _mm512_storeu_si512(out, _mm512_cvtepu8_epi16(_mm512_castsi512_si256(block)));
    _mm512_storeu_si512(out + kBlock / 2,
                        _mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(block, 1)));
}

}  // namespace

// While a whole block is left to read, there is room for the units of a whole block.
I18N_WITH_WIDEST_BLOCKS void i18nDecodeWidestBlocks(I18NDecoding& decoding) {
    I18NDecoding now = decoding;
    __m512i previous = _mm512_setzero_si512();
    bool good = true;
    while (good && now.end - now.at >= kBlock) {
        const __m512i at = _mm512_loadu_si512(now.at);
        if (isPlain(at) && !goesOn(previous)) {
            widen(now.out, at);
            now.out += kBlock;
        } else {
            good = decode<false>(now, blockOf(previous, at), _mm512_setzero_si512());
        }
        previous = at;
        if (good) now.at += kBlock;
    }
    if (good && now.at != now.end) {
        // Other characters fill the last block, so that the kernel stops if the last sequence lacks
        // bytes.
        const __mmask64 places = firstBits(now.end - now.at);
        const __m512i at = _mm512_mask_loadu_epi8(all(1), places, now.at);
        const __m512i outside = _mm512_mask_mov_epi8(all(0x80), places, _mm512_setzero_si512());
        good = decode<true>(now, blockOf(previous, at), outside);
        if (good) now.at = now.end;
    }
    now.leaveUnfinished(decoding.at);
    decoding = now;
}
