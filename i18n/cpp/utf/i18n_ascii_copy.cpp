#include "i18n/cpp/utf/i18n_ascii_copy.hpp"

#include <immintrin.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "i18n/cpp/utf/i18n_utf_blocks.hpp"

namespace {

bool hasOdd(const I18NASCIICopy& copy) {
    const auto isASCII = [](unsigned char byte) { return byte < 0x80; };
    return std::any_of(std::begin(copy.odd), std::end(copy.odd), isASCII);
}

/// Returns a bit for each line end of a block.
/// @param carry  1 if the byte before the block is CR; receives the same for the next block
inline std::uint32_t lineEnds(std::uint32_t lf, std::uint32_t cr, int size, std::uint32_t& carry) {
    const std::uint32_t ends = cr | (lf & ~(cr << 1 | carry));
    carry = cr >> (size - 1);
    return ends;
}

template <bool kHasOdd>
void copyBlocks(I18NASCIICopy& copy) {
    constexpr int kBlock = 16;
    const auto is = [](__m128i block, int byte) { return _mm_cmpeq_epi8(block, i18nBytes(byte)); };
    I18NASCIICopy now = copy;
    std::uint32_t carry = now.isAfterCR ? 1 : 0;
    for (; now.end - now.at >= kBlock; now.at += kBlock, now.out += kBlock) {
        const __m128i block = i18nLoad(now.at);
        __m128i others = block;
        if (kHasOdd)
            for (const unsigned char odd : copy.odd) others = _mm_or_si128(others, is(block, odd));
        if (i18nMask(others) != 0) break;
        i18nStore(now.out, block);
        std::uint32_t ends =
            lineEnds(i18nMask(is(block, '\n')), i18nMask(is(block, '\r')), kBlock, carry);
        for (; ends != 0; ends &= ends - 1) ++now.lines;
    }
    now.isAfterCR = carry != 0;
    copy = now;
}

template <bool kHasOdd>
I18N_WITH_WIDE_BLOCKS void copyWideBlocks(I18NASCIICopy& copy) {
    constexpr int kBlock = 32;
    const __m256i lf = _mm256_set1_epi8('\n'), cr = _mm256_set1_epi8('\r');
    __m256i odd[I18NASCIICopy::kMostOdd];
    for (int i = 0; i < I18NASCIICopy::kMostOdd; ++i)
        odd[i] = _mm256_set1_epi8(static_cast<char>(copy.odd[i]));
    I18NASCIICopy now = copy;
    std::uint32_t carry = now.isAfterCR ? 1 : 0;
    for (; now.end - now.at >= kBlock; now.at += kBlock, now.out += kBlock) {
        const __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(now.at));
        __m256i others = block;
        if (kHasOdd)
            for (const __m256i each : odd)
                others = _mm256_or_si256(others, _mm256_cmpeq_epi8(block, each));
        if (_mm256_movemask_epi8(others) != 0) break;
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(now.out), block);
        const auto mask = [block](__m256i byte) I18N_WITH_WIDE_BLOCKS {
            return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(block, byte)));
        };
        const std::uint32_t ends = lineEnds(mask(lf), mask(cr), kBlock, carry);
        now.lines += static_cast<std::size_t>(__builtin_popcount(ends));
    }
    now.isAfterCR = carry != 0;
    copy = now;
}

}  // namespace

void i18nCopyASCIIBlocks(I18NASCIICopy& copy) {
    hasOdd(copy) ? copyBlocks<true>(copy) : copyBlocks<false>(copy);
}

I18N_WITH_WIDE_BLOCKS void i18nCopyWideASCIIBlocks(I18NASCIICopy& copy) {
    hasOdd(copy) ? copyWideBlocks<true>(copy) : copyWideBlocks<false>(copy);
}

I18NASCIICopier i18nASCIICopier() {
    return i18nHasWideBlocks() ? i18nCopyWideASCIIBlocks : i18nCopyASCIIBlocks;
}
