#include "i18n/cpp/utf/i18n_utf.hpp"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

#include "i18n/cpp/utf/i18n_utf_blocks.hpp"

// A kernel decodes well-formed sequences by blocks. Where the kernel stops, the plain decoder
// continues. It decodes sequence by sequence, including ill-formed sequences, with a function for
// each length. Neighbouring sequences often have the same length, so each function decodes a run of
// sequences.

namespace {

constexpr std::size_t kBlock = 16;

std::uint32_t loadFour(const unsigned char* p) {
    std::uint32_t four;
    std::memcpy(&four, p, sizeof four);
    return four;
}

// Tests for well-formed sequences in a word of four bytes. The first byte is the lowest byte of the
// word.
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

/// Decodes ASCII up to a NUL.
void decodeASCII(I18NDecoding& decoding) {
    // There is room for as many units as bytes are left, so a whole block may be written.
    if (static_cast<std::size_t>(decoding.end - decoding.at) < kBlock) {
        *decoding.out++ = *decoding.at++;
        return;
    }
    const int run = asciiRun(decoding.at, decoding.out);
    decoding.at += run;
    decoding.out += run;
}

/// Decodes well-formed sequences of two bytes. Reads four bytes at once.
void decodeTwos(I18NDecoding& decoding, const unsigned char* until) {
    char16_t* out = decoding.out;
    std::uint32_t four = loadFour(decoding.at);
    bool doubtful = false;
    const auto put = [&](std::uint32_t two) {
        *out = static_cast<char16_t>(((two & 0x1F) << 6) | ((two >> 8) & 0x3F));
        doubtful |= i18nMayNeedNormalization(*out++);
    };
    while (isTwoByTwo(four)) {
        put(four);
        put(four >> 16);
        decoding.at += 4;
        if (decoding.at >= until || decoding.end - decoding.at < 4) break;
        four = loadFour(decoding.at);
    }
    if (out == decoding.out && isTwo(four)) {
        put(four);
        decoding.at += 2;
    }
    if (doubtful) decoding.doubt(decoding.out, out);
    decoding.out = out;
}

/// Decodes well-formed sequences of three or of four bytes. Reads four bytes at once.
template <int kLength>
void decodeLong(I18NDecoding& decoding, const unsigned char* until) {
    char16_t* const begin = decoding.out;
    std::uint32_t c;
    while (decoding.at < until && decoding.end - decoding.at >= 4) {
        const std::uint32_t four = loadFour(decoding.at);
        if (!(kLength == 3 ? isThree(four, c) : isFour(four, c))) break;
        decoding.out += i18nPutCodePoint(decoding.out, c);
        decoding.at += kLength;
    }
    if (decoding.out != begin) decoding.doubt(begin, decoding.out);
}

/// Decodes one sequence, well-formed or not, that begins with a byte from 0x80 on.
void decodeAny(I18NDecoding& decoding) {
    char16_t* const begin = decoding.out;
    const unsigned char lead = *decoding.at;
    if (lead < 0xC0 || lead >= 0xFE) {
        *decoding.out++ = 0x15;
        ++decoding.at;
        return;
    }
    char32_t c;
    decoding.at = decodeSequence(decoding.at, decoding.end, c);
    decoding.out += i18nPutCodePoint(decoding.out, c);
    if (i18nMayNeedNormalization(c)) decoding.doubt(begin, decoding.out);
}

/// Decodes up to a NUL, or to the end of the sequence or run that reaches `until`.
/// @return false if it stopped before a NUL
bool decodePlainly(I18NDecoding& decoding, const unsigned char* until) {
    while (decoding.at < until) {
        const unsigned char* const before = decoding.at;
        const unsigned char lead = *before;
        if (lead == 0) return false;
        if (lead < 0x80) {
            decodeASCII(decoding);
            continue;
        }
        if (decoding.end - decoding.at >= 4) {
            if (lead < 0xE0)
                decodeTwos(decoding, until);
            else if (lead < 0xF0)
                decodeLong<3>(decoding, until);
            else
                decodeLong<4>(decoding, until);
        }
        if (decoding.at == before) decodeAny(decoding);
    }
    return true;
}

/// Decodes well-formed sequences and NULs until `bytes` reaches `until`. Stops earlier at malformed
/// text, and near the end of the bytes or of the room.
void decodeWellFormed(const unsigned char*& bytes, const unsigned char* end, char16_t*& out,
                      const char16_t* limit, const unsigned char* until) {
    const unsigned char* p = bytes;
    char16_t* to = out;
    const auto room = static_cast<std::ptrdiff_t>(kBlock);
    while (p < until && end - p >= 4 && limit - to >= room) {
        const unsigned char lead = *p;
        const std::uint32_t four = loadFour(p);
        std::uint32_t c;
        if (lead < 0x80) {
            // A run ends at a NUL, too.
            const int run = end - p >= room ? asciiRun(p, to) : 0;
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

/// The best kernel for this processor, or null.
I18NDecoder decoder() {
    if (i18nHasWidestBlocks()) return i18nDecodeWidestBlocks;
    if (i18nHasWideBlocks()) return i18nDecodeWideBlocks;
    return i18nHasShuffles() ? i18nDecodeBlocks : nullptr;
}

}  // namespace

I18NDecoded i18nDecodeUTF8(const char* bytes, std::size_t length, char16_t* out) {
    return i18nDecodeUTF8(decoder(), bytes, length, out);
}

I18NDecoded i18nDecodeUTF8(I18NDecoder kernel, const char* bytes, std::size_t length,
                           char16_t* out) {
    const auto* const begin = reinterpret_cast<const unsigned char*>(bytes);
    I18NDecoding decoding{begin, begin + length, out};
    while (decoding.at != decoding.end) {
        if (kernel != nullptr) kernel(decoding);
        const std::ptrdiff_t left = decoding.end - decoding.at;
        // Ill-formed sequences tend to be close together, so the kernel is not called again after
        // each of them.
        const std::ptrdiff_t some = kernel != nullptr ? std::min<std::ptrdiff_t>(32, left) : left;
        if (!decodePlainly(decoding, decoding.at + some)) break;
    }
    I18NDecoded result;
    result.units = static_cast<std::size_t>(decoding.out - out);
    if (decoding.doubtFrom != nullptr) {
        result.doubtFrom = static_cast<std::size_t>(decoding.doubtFrom - out);
        result.doubtTo = static_cast<std::size_t>(decoding.doubtTo - out);
    }
    return result;
}

void i18nDecodeWellFormedUTF8(const char*& bytes, const char* end, char16_t*& out,
                              const char16_t* limit) {
    const I18NDecoder kernel = decoder();
    const auto* const endByte = reinterpret_cast<const unsigned char*>(end);
    const auto* at = reinterpret_cast<const unsigned char*>(bytes);
    const unsigned char* before = nullptr;
    while (at != before && at != endByte) {
        before = at;
        const std::ptrdiff_t most = std::min(endByte - at, limit - out);
        I18NDecoding decoding{at, at + most, out};
        if (kernel != nullptr) kernel(decoding);
        at = decoding.at;
        out = decoding.out;
        // The kernel also stops at a NUL and near the end. So a few bytes are decoded without it.
        const std::ptrdiff_t some = kernel != nullptr ? std::min<std::ptrdiff_t>(32, most) : most;
        decodeWellFormed(at, endByte, out, limit, decoding.at + std::min(some, endByte - at));
    }
    bytes = reinterpret_cast<const char*>(at);
}
