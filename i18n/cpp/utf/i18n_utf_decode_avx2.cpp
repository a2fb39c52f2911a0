// Decodes UTF-8 by blocks of 32 bytes, for processors with AVX2. A unit is computed at each byte,
// from that byte and the three bytes before it. The unit is correct at the last byte of a sequence.
// In a sequence of four bytes, the unit is also correct at the third byte, which gets the first
// half of the pair. Shuffles from a table then move the correct units together.
//
// Blocks follow each other at a fixed distance, so no block has to wait until the length of the
// previous block is known. A sequence may begin in one block and end in the next; the next block
// then decodes it.
//
// Sources: D. Lemire and W. Mula, "Transcoding billions of Unicode characters per second with SIMD
// instructions" (2022), for the shuffles; J. Keiser and D. Lemire, "Validating UTF-8 in less than
// one instruction per byte" (2021), for the validation.
#include <immintrin.h>

#include <cstring>

#include "i18n/cpp/utf/i18n_utf_blocks.hpp"
#include "i18n/cpp/utf/i18n_utf_nibbles.hpp"

#define INLINE_WIDE I18N_WITH_WIDE_BLOCKS __attribute__((always_inline)) inline

namespace {

constexpr int kBlock = 32;

INLINE_WIDE __m256i all(int value) { return _mm256_set1_epi8(static_cast<char>(value)); }
INLINE_WIDE __m256i load(const void* p) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(p));
}
INLINE_WIDE unsigned maskOf(__m256i bytes) {
    return static_cast<unsigned>(_mm256_movemask_epi8(bytes));
}
INLINE_WIDE __m256i lowNibbles(__m256i bytes) { return _mm256_and_si256(bytes, all(0x0F)); }
INLINE_WIDE __m256i highNibbles(__m256i bytes) { return lowNibbles(_mm256_srli_epi16(bytes, 4)); }
INLINE_WIDE __m256i lookUp(const std::uint8_t (&table)[16], __m256i nibbles) {
    return _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(i18nLoad(table)), nibbles);
}
/// Returns bytes whose top bit is set where `bytes` is at least `least`; their other bits are
/// arbitrary. Requires: `least` is at least 0x80.
INLINE_WIDE __m256i fromOn(__m256i bytes, int least) {
    return _mm256_subs_epu8(bytes, all(least - 0x80));
}

/// A block. At each byte of the block, before1, before2 and before3 have the bytes one, two and
/// three places before it.
struct Block {
    __m256i at, before1, before2, before3;
};
INLINE_WIDE Block blockOf(__m256i previous, __m256i at) {
    const __m256i joint = _mm256_permute2x128_si256(previous, at, 0x21);
    return {at, _mm256_alignr_epi8(at, joint, 15), _mm256_alignr_epi8(at, joint, 14),
            _mm256_alignr_epi8(at, joint, 13)};
}

/// Returns a value other than 0 if the block has a NUL or an ill-formed sequence. The end of a
/// sequence that continues in the next block is checked with that block.
INLINE_WIDE __m256i stops(const Block& block) {
    const I18NNibbleTables& tables = kI18NIllFormedTables;
    const __m256i found =
        _mm256_and_si256(_mm256_and_si256(lookUp(tables.firstHigh, highNibbles(block.before1)),
                                          lookUp(tables.firstLow, lowNibbles(block.before1))),
                         lookUp(tables.secondHigh, highNibbles(block.at)));
    // Two trail bytes must follow each other at these places and nowhere else.
    const __m256i later = _mm256_or_si256(fromOn(block.before2, 0xE0), fromOn(block.before3, 0xF0));
    return _mm256_or_si256(_mm256_xor_si256(found, _mm256_and_si256(later, all(0x80))),
                           _mm256_cmpeq_epi8(block.at, _mm256_setzero_si256()));
}

/// The lower and the upper byte of the unit at each place.
struct Units {
    __m256i low, high;
};
INLINE_WIDE Units unitsOf(const Block& block) {
    const __m256i trails = _mm256_cmpgt_epi8(all(0xC0), block.at);
    const __m256i middle = _mm256_and_si256(block.before1, trails);
    const __m256i first = _mm256_subs_epu8(block.before2, all(0xE0));
    return {_mm256_or_si256(_mm256_andnot_si256(_mm256_and_si256(trails, all(0xC0)), block.at),
                            _mm256_and_si256(_mm256_slli_epi16(middle, 6), all(0xC0))),
            _mm256_or_si256(lowNibbles(_mm256_srli_epi16(middle, 2)),
                            _mm256_and_si256(_mm256_slli_epi16(first, 4), all(0xF0)))};
}

/// Puts the halves of surrogate pairs into the units. The first half has the upper ten bits of the
/// code point minus 0x10000.
INLINE_WIDE void setHalves(Units& units, const Block& block) {
    const __m256i upper =
        _mm256_or_si256(_mm256_and_si256(_mm256_slli_epi16(block.before1, 2), all(0xFC)),
                        _mm256_and_si256(_mm256_srli_epi16(block.at, 4), all(0x03)));
    const __m256i borrow =
        _mm256_cmpeq_epi8(_mm256_and_si256(block.before1, all(0x30)), _mm256_setzero_si256());
    const __m256i top = _mm256_add_epi8(
        _mm256_add_epi8(_mm256_and_si256(block.before2, all(0x07)), all(0xD8)), borrow);
    const __m256i isFirst = fromOn(block.before2, 0xF0);
    units.low = _mm256_blendv_epi8(units.low, _mm256_sub_epi8(upper, all(0x40)), isFirst);
    units.high = _mm256_blendv_epi8(units.high, top, isFirst);
    const __m256i second = _mm256_or_si256(_mm256_and_si256(units.high, all(0x03)), all(0xDC));
    units.high = _mm256_blendv_epi8(units.high, second, fromOn(block.before3, 0xF0));
}

/// Returns true if some unit may not be inert. Looks at the units of all places, including the
/// places that are dropped.
INLINE_WIDE bool isDoubtful(const I18NNibbleTables& tables, const Units& units) {
    const __m256i inert =
        _mm256_and_si256(_mm256_and_si256(lookUp(tables.firstHigh, highNibbles(units.high)),
                                          lookUp(tables.firstLow, lowNibbles(units.high))),
                         _mm256_and_si256(lookUp(tables.secondHigh, highNibbles(units.low)),
                                          lookUp(tables.secondLow, lowNibbles(units.low))));
    return maskOf(_mm256_cmpeq_epi8(inert, _mm256_setzero_si256())) != 0;
}

INLINE_WIDE __m256i shufflesFor(unsigned mask0, unsigned mask1) {
    return _mm256_inserti128_si256(
        _mm256_castsi128_si256(i18nLoad(i18nKeepingShuffles.bytes[mask0 & 0xFF])),
        i18nLoad(i18nKeepingShuffles.bytes[mask1 & 0xFF]), 1);
}

/// Writes the units whose bit in `kept` is set. May write up to eight more units, but at most 32 in
/// all.
INLINE_WIDE char16_t* write(char16_t* out, const Units& units, unsigned kept) {
    const __m256i even = _mm256_shuffle_epi8(_mm256_unpacklo_epi8(units.low, units.high),
                                             shufflesFor(kept, kept >> 16));
    const __m256i odd = _mm256_shuffle_epi8(_mm256_unpackhi_epi8(units.low, units.high),
                                            shufflesFor(kept >> 8, kept >> 24));
    i18nStore(out, _mm256_castsi256_si128(even));
    i18nStore(out + __builtin_popcount(kept & 0xFF), _mm256_castsi256_si128(odd));
    i18nStore(out + __builtin_popcount(kept & 0xFFFF), _mm256_extracti128_si256(even, 1));
    i18nStore(out + __builtin_popcount(kept & 0xFFFFFF), _mm256_extracti128_si256(odd, 1));
    return out + __builtin_popcount(kept);
}

/// @param places  the bytes of the block that belong to the text
/// @return the place after the units written, or null if the block stops the kernel
template <bool kPairs>
INLINE_WIDE char16_t* decode(I18NDecoding& decoding, char16_t* out, const Block& block,
                             unsigned places) {
    const __m256i stop = stops(block);
    if (!_mm256_testz_si256(stop, stop)) return nullptr;
    Units units = unitsOf(block);
    if (kPairs) setHalves(units, block);
    const __m256i dropped = _mm256_or_si256(fromOn(block.at, 0xC0), fromOn(block.before1, 0xE0));
    const Units looked = {units.low,
                          _mm256_blendv_epi8(units.high, _mm256_setzero_si256(), dropped)};
    char16_t* const after = write(out, units, ~maskOf(dropped) & places);
    if (isDoubtful(kPairs ? kI18NInertWithPairsTables : kI18NInertTables, looked))
        decoding.doubt(out, after);
    return after;
}

INLINE_WIDE char16_t* decode(I18NDecoding& decoding, char16_t* out, const Block& block,
                             unsigned places) {
    const __m256i fours = fromOn(_mm256_max_epu8(block.at, block.before3), 0xF0);
    return maskOf(fours) == 0 ? decode<false>(decoding, out, block, places)
                              : decode<true>(decoding, out, block, places);
}

/// Returns true if the last sequence of a block ends in the next block.
INLINE_WIDE bool goesOn(__m256i block) {
    const __m256i most =
        _mm256_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
                         -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, static_cast<char>(0xEF),
                         static_cast<char>(0xDF), static_cast<char>(0xBF));
    const __m256i over = _mm256_subs_epu8(block, most);
    return !_mm256_testz_si256(over, over);
}

/// Returns true if all bytes are ASCII and none is NUL.
INLINE_WIDE bool isPlain(__m256i block) {
    return maskOf(_mm256_cmpgt_epi8(block, _mm256_setzero_si256())) == 0xFFFFFFFF;
}
INLINE_WIDE void widen(char16_t* out, __m256i block) {
    const auto to = reinterpret_cast<__m256i*>(out);
    _mm256_storeu_si256(to, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(block)));
    _mm256_storeu_si256(to + 1, _mm256_cvtepu8_epi16(_mm256_extracti128_si256(block, 1)));
}

/// Copies fewer than 32 elements by two moves of the same fixed size, which may overlap.
template <class Element, std::size_t kSize>
INLINE_WIDE bool copyFrom(Element* to, const Element* from, std::size_t count) {
    if (count < kSize) return false;
    std::memcpy(to, from, kSize * sizeof *from);
    std::memcpy(to + count - kSize, from + count - kSize, kSize * sizeof *from);
    return true;
}
template <class Element>
INLINE_WIDE void copyFew(Element* to, const Element* from, std::size_t count) {
    if (copyFrom<Element, 16>(to, from, count) || copyFrom<Element, 8>(to, from, count) ||
        copyFrom<Element, 4>(to, from, count) || copyFrom<Element, 2>(to, from, count))
        return;
    if (count != 0) *to = *from;
}

/// Decodes the rest of the text as a block. Fills the block with other characters, and leaves their
/// units out. Reads and writes in its own buffers, because the text and the room for units are
/// shorter than a block.
/// @return false if the block stops the kernel
INLINE_WIDE bool decodeRest(I18NDecoding& decoding, __m256i previous) {
    const auto left = static_cast<unsigned>(decoding.end - decoding.at);
    alignas(kBlock) unsigned char bytes[kBlock];
    _mm256_store_si256(reinterpret_cast<__m256i*>(bytes), all(1));
    copyFew(bytes, decoding.at, left);
    alignas(kBlock) char16_t units[kBlock];
    I18NDecoding aside = decoding;
    aside.doubtFrom = nullptr;
    const char16_t* const after =
        decode(aside, units, blockOf(previous, load(bytes)), (1U << left) - 1);
    if (after == nullptr) return false;
    const auto count = static_cast<std::size_t>(after - units);
    copyFew(decoding.out, units, count);
    if (aside.doubtFrom != nullptr) decoding.doubt(decoding.out, decoding.out + count);
    decoding.at += left;
    decoding.out += count;
    return true;
}

}  // namespace

// While a whole block is left to read, there is room for the units of a whole block.
I18N_WITH_WIDE_BLOCKS void i18nDecodeWideBlocks(I18NDecoding& decoding) {
    const unsigned char* const begin = decoding.at;
    __m256i previous = _mm256_setzero_si256();
    bool good = true;
    while (decoding.end - decoding.at >= kBlock) {
        const __m256i at = load(decoding.at);
        if (isPlain(at) && !goesOn(previous)) {
            widen(decoding.out, at);
            decoding.out += kBlock;
        } else {
            char16_t* const after =
                decode(decoding, decoding.out, blockOf(previous, at), 0xFFFFFFFF);
            good = after != nullptr;
            if (!good) break;
            decoding.out = after;
        }
        previous = at;
        decoding.at += kBlock;
    }
    if (good && decoding.at != decoding.end && decodeRest(decoding, previous)) return;
    decoding.leaveUnfinished(begin);
}
