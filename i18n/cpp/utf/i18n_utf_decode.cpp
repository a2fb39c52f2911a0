#include "i18n/cpp/utf/i18n_utf.hpp"

#include <emmintrin.h>

#include <cstring>

#include "i18n/cpp/utf/i18n_utf_blocks.hpp"

namespace {

constexpr std::size_t kBlock = 16;

std::uint32_t loadFour(const unsigned char* p) {
    std::uint32_t four;
    std::memcpy(&four, p, sizeof four);
    return four;
}

// The forms of well-formed sequences, in four bytes loaded with the first one lowest.
bool isTwo(std::uint32_t four) { return (four & 0xC0E0) == 0x80C0 && (four & 0x1E) != 0; }
bool isTwoByTwo(std::uint32_t four) {
    return (four & 0xC0E0C0E0) == 0x80C080C0 && (four & 0x1E) != 0 && (four & 0x1E0000) != 0;
}
bool isThree(std::uint32_t four, std::uint32_t& c) {
    c = ((four & 0xF) << 12) | ((four >> 2) & 0xFC0) | ((four >> 16) & 0x3F);
    return (four & 0xC0C0F0) == 0x8080E0 && c >= 0x800 && (c & 0xF800) != 0xD800;
}
bool isFour(std::uint32_t four, std::uint32_t& c) {
    c = ((four & 0x7) << 18) | ((four << 4) & 0x3F000) | ((four >> 10) & 0xFC0) |
        ((four >> 24) & 0x3F);
    return (four & 0xC0C0C0F8) == 0x808080F0 && c >= 0x10000 && c <= 0x10FFFF;
}

/// Widens the ASCII characters at the start of a block of bytes, up to a NUL.
/// @return their number; the whole block is written
int asciiRun(const unsigned char* p, char16_t* out) {
    const __m128i block = i18nLoad(p);
    const __m128i nuls = _mm_cmpeq_epi8(block, _mm_setzero_si128());
    i18nStore(out, _mm_unpacklo_epi8(block, _mm_setzero_si128()));
    i18nStore(out + kBlock / 2, _mm_unpackhi_epi8(block, _mm_setzero_si128()));
    return __builtin_ctz(static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(block, nuls))) |
                         0x10000U);
}

/// Decodes a sequence whose lead byte is from 0xC0 to 0xFD; sets an error value if it is
/// ill-formed.
/// @return the end of the sequence
const unsigned char* decodeSequence(const unsigned char* p, const unsigned char* end, char32_t& c) {
    static const char32_t kErrors[] = {0x15, 0x9F, 0xFFFF, 0x10FFFF, 0xFFFF, 0xFFFF};
    static const char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
    const int announced = i18nTrailsAnnounced(*p);
    c = *p++ & (announced < 4 ? 0x3FU >> announced : 0U);
    int trails = 0;
    for (; trails < announced && p != end && i18nIsTrail(*p); ++trails)
        c = (c << 6) | (*p++ & 0x3FU);
    const bool wellFormed = trails == announced && announced < 4 && c >= kLeast[announced] &&
                            c <= 0x10FFFF && (c & 0xFFFFF800) != 0xD800;
    if (!wellFormed) c = kErrors[trails];
    return p;
}

}  // namespace

I18NDecoded i18nDecodeUTF8(const char* bytes, std::size_t length, char16_t* out) {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes);
    const auto* const end = p + length;
    char16_t* const begin = out;
    bool mayNeedNormalization = false;
    const bool byBlocks = i18nHasShuffles();
    while (p != end) {
        if (byBlocks) {
            I18NDecoding blocks{p, end, out};
            i18nDecodeBlocks(blocks);
            p = blocks.at;
            out = blocks.out;
            const __m128i none = _mm_cmpeq_epi8(blocks.mayNeedNormalization, _mm_setzero_si128());
            mayNeedNormalization |= _mm_movemask_epi8(none) != 0xFFFF;
            if (p == end) break;
        }
        const unsigned char lead = *p;
        if (lead < 0x80) {
            if (lead == 0) break;
            // There are at least as many units of room as bytes left, so a whole block may be
            // written.
            if (static_cast<std::size_t>(end - p) >= kBlock) {
                const int run = asciiRun(p, out);
                p += run;
                out += run;
            } else {
                *out++ = lead;
                ++p;
            }
            continue;
        }
        if (end - p >= 4) {
            // Text usually has the same sequence length for a while.
            const unsigned char* const before = p;
            std::uint32_t four = loadFour(p);
            if (lead < 0xE0) {
                while (isTwoByTwo(four)) {
                    out[0] = static_cast<char16_t>(((four & 0x1F) << 6) | ((four >> 8) & 0x3F));
                    out[1] = static_cast<char16_t>(((four >> 10) & 0x7C0) | ((four >> 24) & 0x3F));
                    mayNeedNormalization |=
                        i18nMayNeedNormalization(out[0]) || i18nMayNeedNormalization(out[1]);
                    out += 2;
                    p += 4;
                    if (end - p < 4) break;
                    four = loadFour(p);
                }
                if (p == before && isTwo(four)) {
                    *out = static_cast<char16_t>(((four & 0x1F) << 6) | ((four >> 8) & 0x3F));
                    mayNeedNormalization |= i18nMayNeedNormalization(*out);
                    ++out;
                    p += 2;
                }
            } else if (lead < 0xF0) {
                for (std::uint32_t c; isThree(four, c);) {
                    *out++ = static_cast<char16_t>(c);
                    mayNeedNormalization = true;
                    p += 3;
                    if (end - p < 4) break;
                    four = loadFour(p);
                }
            } else {
                for (std::uint32_t c; isFour(four, c);) {
                    out += i18nPutCodePoint(out, c);
                    mayNeedNormalization = true;
                    p += 4;
                    if (end - p < 4) break;
                    four = loadFour(p);
                }
            }
            if (p != before) continue;
        }
        if (lead >= 0xC0 && lead < 0xFE) {
            char32_t c;
            p = decodeSequence(p, end, c);
            out += i18nPutCodePoint(out, c);
            mayNeedNormalization |= i18nMayNeedNormalization(c);
        } else {
            *out++ = 0x15;
            ++p;
        }
    }
    I18NDecoded result;
    result.units = static_cast<std::size_t>(out - begin);
    result.mayNeedNormalization = mayNeedNormalization;
    return result;
}

void i18nDecodeWellFormedUTF8(const char*& bytes, const char* end, char16_t*& out,
                              const char16_t* limit) {
    const char* p = bytes;
    char16_t* to = out;
    const auto room = static_cast<std::ptrdiff_t>(kBlock);
    while (end - p >= 4 && limit - to >= room) {
        const auto lead = static_cast<unsigned char>(*p);
        std::uint32_t four = loadFour(reinterpret_cast<const unsigned char*>(p));
        std::uint32_t c;
        if (lead < 0x80) {
            // A run ends at a NUL, too.
            const int run =
                end - p >= room ? asciiRun(reinterpret_cast<const unsigned char*>(p), to) : 0;
            if (run == 0) *to = lead;
            p += run == 0 ? 1 : run;
            to += run == 0 ? 1 : run;
        } else if (isTwo(four)) {
            *to++ = static_cast<char16_t>(((four & 0x1F) << 6) | ((four >> 8) & 0x3F));
            p += 2;
        } else if (isThree(four, c)) {
            *to++ = static_cast<char16_t>(c);
            p += 3;
        } else if (isFour(four, c)) {
            to += i18nPutCodePoint(to, c);
            p += 4;
        } else {
            break;
        }
    }
    bytes = p;
    out = to;
}
