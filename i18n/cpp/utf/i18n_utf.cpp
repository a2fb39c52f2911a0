#include "i18n/cpp/utf/i18n_utf.hpp"

#include <emmintrin.h>

#include <cstring>

#include "i18n/cpp/utf/i18n_utf_blocks.hpp"

namespace {

constexpr std::size_t kBlock = 16;

__m128i load(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
void store(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }

/// Returns true if all eight units are ASCII.
bool isASCII(__m128i units) {
    const __m128i above = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80)));
    return _mm_movemask_epi8(_mm_cmpeq_epi16(above, _mm_setzero_si128())) == 0xFFFF;
}

/// Narrows the ASCII characters at the start of a block of units.
/// @return their number; the whole block is written
int asciiRun(const char16_t* units, char* out) {
    const __m128i low = load(units), high = load(units + kBlock / 2);
    // Packing turns a unit above 0xFF into 0xFF, and a unit above 0x7FFF, which is negative, into
    // 0. The sign of the unit detects a unit above 0x7FFF.
    const __m128i packed = _mm_packus_epi16(low, high);
    const __m128i signs = _mm_packs_epi16(low, high);
    store(out, packed);
    return __builtin_ctz(static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(packed, signs))) |
                         0x10000U);
}

/// Adds the number of bytes that eight units need beyond one byte each.
/// @return the number of units counted: 7 if the last unit is the first half of a pair, 0 if there
///     is a lone surrogate
int countMore(__m128i block, std::size_t& bytes) {
    const auto all = [](int unit) { return _mm_set1_epi16(static_cast<short>(unit)); };
    // A comparison gives -1 for each unit where it holds. Adding these up counts the units.
    const __m128i biased = _mm_xor_si128(block, all(0x8000));
    __m128i more = _mm_add_epi16(_mm_cmpgt_epi16(biased, all(0x7F - 0x8000)),
                                 _mm_cmpgt_epi16(biased, all(0x7FF - 0x8000)));
    const __m128i top = _mm_and_si128(block, all(0xFC00));
    const __m128i highs = _mm_cmpeq_epi16(top, all(0xD800));
    const __m128i lows = _mm_cmpeq_epi16(top, all(0xDC00));
    const __m128i surrogates = _mm_or_si128(highs, lows);
    int counted = kBlock / 2;
    if (_mm_movemask_epi8(surrogates) != 0) {
        const int pairs = _mm_movemask_epi8(_mm_packs_epi16(highs, lows));
        const int high = pairs & 0xFF;
        if ((high << 1 & 0xFF) != pairs >> 8) return 0;
        more = _mm_sub_epi16(more, surrogates);  // two bytes for each half
        if (high >> 7 != 0) {
            more = _mm_srli_si128(_mm_slli_si128(more, 2), 2);
            --counted;
        }
    }
    const __m128i sums = _mm_sad_epu8(
        _mm_sub_epi8(_mm_setzero_si128(), _mm_packs_epi16(more, more)), _mm_setzero_si128());
    bytes += static_cast<std::size_t>(_mm_cvtsi128_si32(sums));
    return counted;
}

void encodeBlocks(const char16_t*& units, const char16_t* end, char*& out) {
    I18NEncoding blocks{units, end, out};
    if (i18nHasWideBlocks())
        i18nEncodeWideBlocks(blocks);
    else
        i18nEncodeBlocks(blocks);
    units = blocks.at;
    out = blocks.out;
}

/// Copies the last units to a buffer, adds as many NUL characters as the blocks need, and encodes
/// the buffer. Each NUL gives one byte, which is removed again.
void encodeLastBlocks(const char16_t*& units, const char16_t* end, char*& out) {
    constexpr std::ptrdiff_t kMost = 2 * kBlock, kRoom = 2 * kMost;
    const std::ptrdiff_t left = end - units;
    if (left < 4 || left >= kMost) return;
    char16_t padded[kRoom] = {};
    std::memcpy(padded, units, static_cast<std::size_t>(left) * sizeof *units);
    char bytes[3 * kRoom];
    const char16_t* at = padded;
    char* to = bytes;
    encodeBlocks(at, padded + kRoom, to);
    const std::ptrdiff_t done = at - padded, surplus = done > left ? done - left : 0;
    to -= surplus;
    std::memcpy(out, bytes, static_cast<std::size_t>(to - bytes));
    units += done - surplus;
    out += to - bytes;
}

}  // namespace

bool i18nIsASCII(const char* bytes, std::size_t length) {
    for (; length >= 4 * kBlock; bytes += 4 * kBlock, length -= 4 * kBlock) {
        const __m128i first = _mm_or_si128(load(bytes), load(bytes + kBlock));
        const __m128i second = _mm_or_si128(load(bytes + 2 * kBlock), load(bytes + 3 * kBlock));
        if (_mm_movemask_epi8(_mm_or_si128(first, second)) != 0) return false;
    }
    for (; length >= kBlock; bytes += kBlock, length -= kBlock)
        if (_mm_movemask_epi8(load(bytes)) != 0) return false;
    unsigned all = 0;
    for (; length != 0; ++bytes, --length) all |= static_cast<unsigned char>(*bytes);
    return all < 0x80;
}

bool i18nIsPlainASCII(const char* bytes, std::size_t length) {
    const auto plain = [](const char* p) { return _mm_cmpgt_epi8(load(p), _mm_setzero_si128()); };
    for (; length >= 4 * kBlock; bytes += 4 * kBlock, length -= 4 * kBlock) {
        const __m128i first = _mm_and_si128(plain(bytes), plain(bytes + kBlock));
        const __m128i second = _mm_and_si128(plain(bytes + 2 * kBlock), plain(bytes + 3 * kBlock));
        if (_mm_movemask_epi8(_mm_and_si128(first, second)) != 0xFFFF) return false;
    }
    for (; length >= kBlock; bytes += kBlock, length -= kBlock)
        if (_mm_movemask_epi8(plain(bytes)) != 0xFFFF) return false;
    bool all = true;
    for (; length != 0; ++bytes, --length) all &= static_cast<signed char>(*bytes) > 0;
    return all;
}

bool i18nIsASCII(const char16_t* units, std::size_t length) {
    for (; length >= kBlock / 2; units += kBlock / 2, length -= kBlock / 2)
        if (!isASCII(load(units))) return false;
    unsigned all = 0;
    for (; length != 0; ++units, --length) all |= *units;
    return all < 0x80;
}

void i18nWiden(const char* ascii, std::size_t length, char16_t* out) {
    for (; length >= kBlock; ascii += kBlock, out += kBlock, length -= kBlock) {
        const __m128i bytes = load(ascii);
        store(out, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
        store(out + kBlock / 2, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
    }
    for (; length != 0; --length) *out++ = static_cast<unsigned char>(*ascii++);
}

void i18nNarrow(const char16_t* ascii, std::size_t length, char* out) {
    for (; length >= kBlock; ascii += kBlock, out += kBlock, length -= kBlock)
        store(out, _mm_packus_epi16(load(ascii), load(ascii + kBlock / 2)));
    for (; length != 0; --length) *out++ = static_cast<char>(*ascii++);
}

std::size_t i18nLengthUTF8(const char16_t* units, std::size_t length) {
    std::size_t bytes = length;
    const char16_t* const end = units + length;
    while (units != end) {
        while (static_cast<std::size_t>(end - units) >= kBlock / 2) {
            const int counted = countMore(load(units), bytes);
            if (counted == 0) break;
            units += counted;
        }
        for (std::size_t i = 0; i < kBlock / 2 && units != end; ++i) {
            const char16_t unit = *units++;
            if (i18nIsHigh(unit) && units != end && i18nIsLow(*units)) {
                ++units;
                bytes += 2;  // a pair has four bytes
            } else {
                bytes += (unit >= 0x80 ? 1U : 0U) + (unit >= 0x800 ? 1U : 0U);
            }
        }
    }
    return bytes;
}

void i18nEncodeWellFormedUTF8(const char16_t*& units, const char16_t* end, char*& out) {
    const bool byBlocks = i18nHasShuffles();
    while (units != end) {
        if (byBlocks) {
            encodeBlocks(units, end, out);
            encodeLastBlocks(units, end, out);
            if (units == end) break;
        }
        std::uint32_t c = *units;
        if (c < 0x80) {
            // There are at least as many bytes of room as units left, so a whole block may be
            // written.
            if (static_cast<std::size_t>(end - units) >= kBlock) {
                const int run = asciiRun(units, out);
                units += run;
                out += run;
            } else {
                *out++ = static_cast<char>(c);
                ++units;
            }
            continue;
        }
        ++units;
        if (c < 0x800) {
            const auto two = static_cast<std::uint16_t>(0x80C0 | (c >> 6) | ((c & 0x3F) << 8));
            std::memcpy(out, &two, sizeof two);
            out += 2;
            continue;
        }
        if ((c & 0xF800) == 0xD800) {
            if (i18nIsHigh(static_cast<char16_t>(c)) && units != end && i18nIsLow(*units)) {
                c = i18nCombine(static_cast<char16_t>(c), *units++);
                const std::uint32_t four = 0x808080F0 | (c >> 18) | ((c >> 4) & 0x3F00) |
                                           ((c << 10) & 0x3F0000) | ((c & 0x3F) << 24);
                std::memcpy(out, &four, sizeof four);
                out += 4;
                continue;
            }
            --units;
            return;
        }
        const auto two = static_cast<std::uint16_t>(0x80E0 | (c >> 12) | ((c & 0xFC0) << 2));
        std::memcpy(out, &two, sizeof two);
        out[2] = static_cast<char>(0x80 | (c & 0x3F));
        out += 3;
    }
}

char* i18nEncodeUTF8(const char16_t* units, std::size_t length, char* out) {
    const char16_t* const end = units + length;
    while (true) {
        i18nEncodeWellFormedUTF8(units, end, out);
        if (units == end) return out;
        *out++ = '\xEF';  // U+FFFD
        *out++ = '\xBF';
        *out++ = '\xBD';
        ++units;
    }
}

std::size_t i18nWellFormedUTF16(const char16_t* units, std::size_t length) {
    const char16_t* at = units;
    const char16_t* const end = units + length;
    while (at != end) {
        if (end - at >= static_cast<std::ptrdiff_t>(kBlock / 2)) {
            const __m128i top = _mm_and_si128(load(at), _mm_set1_epi16(static_cast<short>(0xF800)));
            const __m128i surrogates =
                _mm_cmpeq_epi16(top, _mm_set1_epi16(static_cast<short>(0xD800)));
            if (_mm_movemask_epi8(surrogates) == 0) {
                at += kBlock / 2;
                continue;
            }
        }
        if ((*at & 0xF800) != 0xD800) {
            ++at;
        } else {
            if (end - at < 2 || !i18nIsHigh(at[0]) || !i18nIsLow(at[1])) break;
            at += 2;
        }
    }
    return static_cast<std::size_t>(at - units);
}
