// Looks up 64 bytes at once. The lookup instruction uses seven bits of each index. So the code
// looks up in both halves of a table, and the top bit of each byte chooses the result.
#if defined(__GNUC__) && !defined(__clang__)
// GCC 12 reports values that its own header leaves undefined on purpose.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include "i18n/cpp/converter/i18n_single_bytes.hpp"
#include "i18n/cpp/utf/i18n_utf_blocks.hpp"

namespace {

constexpr int kBlock = 64;

#define INLINE_WIDEST I18N_WITH_WIDEST_BLOCKS __attribute__((always_inline)) inline

struct Table {
    __m512i quarters[4];
};
INLINE_WIDEST Table tableOf(const std::uint8_t (&bytes)[0x100]) {
    Table table;
    for (int i = 0; i < 4; ++i) table.quarters[i] = _mm512_loadu_si512(bytes + i * kBlock);
    return table;
}
INLINE_WIDEST __m512i lookUp(const Table& table, __m512i bytes, __mmask64 tops) {
    const __m512i low = _mm512_permutex2var_epi8(table.quarters[0], bytes, table.quarters[1]);
    const __m512i high = _mm512_permutex2var_epi8(table.quarters[2], bytes, table.quarters[3]);
    return _mm512_mask_blend_epi8(tops, low, high);
}

}  // namespace

I18N_WITH_WIDEST_BLOCKS void i18nDecodeWidestSingles(I18NSinglesDecoding& decoding,
                                                     const I18NSingleBytes& table) {
    const Table lower = tableOf(table.lower), upper = tableOf(table.upper);
    const __m512i none = _mm512_set1_epi8(static_cast<char>(I18NSingleBytes::kNone >> 8));
    // The unpack instructions below combine lower and upper bytes to units within each 128 bits.
    // With this order of the 64-bit words, the units are in the order of the bytes.
    const __m512i order = _mm512_set_epi64(7, 3, 6, 2, 5, 1, 4, 0);
    I18NSinglesDecoding now = decoding;
    for (; now.end - now.at >= kBlock && now.limit - now.out >= kBlock; now.at += kBlock) {
        const __m512i bytes = _mm512_permutexvar_epi64(order, _mm512_loadu_si512(now.at));
        const __mmask64 tops = _mm512_movepi8_mask(bytes);
        const __m512i high = lookUp(upper, bytes, tops);
        const __mmask64 nones = _mm512_cmpeq_epi8_mask(high, none);
        if (_kortestz_mask64_u8(nones, nones) == 0) break;
        const __m512i low = lookUp(lower, bytes, tops);
        _mm512_storeu_si512(now.out, _mm512_unpacklo_epi8(low, high));
        _mm512_storeu_si512(now.out + kBlock / 2, _mm512_unpackhi_epi8(low, high));
        now.out += kBlock;
    }
    decoding = now;
}
