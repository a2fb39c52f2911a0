#include "i18n/cpp/converter/i18n_single_bytes.hpp"

#include "i18n/cpp/utf/i18n_utf_blocks.hpp"

namespace {

constexpr int kBlock = 16;

/// Looks up eight bytes.
inline __m128i lookUp(const I18NSingleBytes& table, const unsigned char* at) {
    const auto unit = [&table, at](int i) { return static_cast<short>(table.units[at[i]]); };
    return _mm_set_epi16(unit(7), unit(6), unit(5), unit(4), unit(3), unit(2), unit(1), unit(0));
}

}  // namespace

void i18nDecodeSingles(I18NSinglesDecoding& decoding, const I18NSingleBytes& table) {
    const __m128i none = i18nUnits(I18NSingleBytes::kNone);
    I18NSinglesDecoding now = decoding;
    for (; now.end - now.at >= kBlock && now.limit - now.out >= kBlock; now.at += kBlock) {
        const __m128i first = lookUp(table, now.at), second = lookUp(table, now.at + kBlock / 2);
        if (i18nMask(_mm_or_si128(_mm_cmpeq_epi16(first, none), _mm_cmpeq_epi16(second, none))) !=
            0)
            break;
        i18nStore(now.out, first);
        i18nStore(now.out + kBlock / 2, second);
        now.out += kBlock;
    }
    decoding = now;
}

I18NSinglesDecoder i18nSinglesDecoder() {
    return i18nHasWidestBlocks() ? i18nDecodeWidestSingles : i18nDecodeSingles;
}
