#ifndef I18N_CPP_UTF_I18N_UTF_BLOCKS_HPP
#define I18N_CPP_UTF_I18N_UTF_BLOCKS_HPP

#include <tmmintrin.h>

#include <cstddef>
#include <cstdint>

#include "i18n/cpp/utf/i18n_utf.hpp"

/// Compiles a function for processors for which i18nHasShuffles() returns true. All other code uses
/// at most SSE2. Every x86-64 processor has SSE2, and the 32-bit library is compiled for SSE2.
#define I18N_WITH_SHUFFLES __attribute__((target("ssse3,popcnt")))

inline bool i18nHasShuffles() {
    return __builtin_cpu_supports("ssse3") && __builtin_cpu_supports("popcnt");
}

#define I18N_WITH_WIDE_BLOCKS __attribute__((target("avx2,popcnt")))
inline bool i18nHasWideBlocks() {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt");
}

#define I18N_WITH_WIDEST_BLOCKS __attribute__((target("avx512bw,avx512vbmi,avx512vbmi2,popcnt")))
inline bool i18nHasWidestBlocks() {
    return __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi") &&
           __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("popcnt");
}

/// Transcoding of well-formed text by blocks, without a branch for each character. Computes the
/// other encoding for every position of a block at once. Shuffles from tables then remove
/// positions: in decoding, those where no character ends; in encoding, those without a byte.
/// Source: D. Lemire and W. Mula, "Transcoding billions of Unicode characters per second with SIMD
/// instructions" (2022).
///
/// Both directions stop before ill-formed text and near the end, and leave the pointers there.

/// The text that is still to be decoded, and the results so far.
struct I18NDecoding {
    const unsigned char* at;
    const unsigned char* end;
    char16_t* out;  ///< room for as many units as there are bytes
    /// Units outside of this range are inert in normalisation form C (see i18n_inert.hpp).
    char16_t* doubtFrom = nullptr;
    char16_t* doubtTo = nullptr;

    void doubt(char16_t* from, char16_t* to) {
        if (doubtFrom == nullptr) doubtFrom = from;
        doubtTo = to;
    }
    /// Steps back to the start of the last sequence if its end is not decoded yet.
    /// @param begin  where decoding began, at the start of a sequence
    void leaveUnfinished(const unsigned char* begin) {
        for (int back = 1; back <= 3 && at - begin >= back; ++back) {
            const unsigned char byte = *(at - back);
            if (i18nIsTrail(byte)) continue;
            if (byte < 0xC0 || i18nTrailsAnnounced(byte) < back) return;
            at -= back;
            if (back == 3) --out;  // the first half of a pair
            return;
        }
    }
};
using I18NDecoder = void (*)(I18NDecoding&);
/// Decodes UTF-8; stops before a NUL byte, too.
void i18nDecodeBlocks(I18NDecoding& decoding);
/// Does the same up to the end, with larger blocks. Requires: i18nHasWideBlocks() is true.
void i18nDecodeWideBlocks(I18NDecoding& decoding);
/// Does the same with still larger blocks. Requires: i18nHasWidestBlocks() is true.
void i18nDecodeWidestBlocks(I18NDecoding& decoding);
/// Works like i18nDecodeUTF8(), but with this kernel: one of the functions above, or null for no
/// kernel.
I18NDecoded i18nDecodeUTF8(I18NDecoder kernel, const char* bytes, std::size_t length,
                           char16_t* out);

struct I18NEncoding {
    const char16_t* at;
    const char16_t* end;
    char* out;  ///< room for the UTF-8 form
};
/// Encodes UTF-16; lone surrogates are ill-formed.
void i18nEncodeBlocks(I18NEncoding& encoding);
/// The same with larger blocks. Requires: i18nHasWideBlocks() is true.
void i18nEncodeWideBlocks(I18NEncoding& encoding);

/// Shuffles, indexed by a mask of eight bits.
struct alignas(16) I18NShuffles {
    std::uint8_t bytes[256][16];
};
/// The shuffles of encoding. `pairs` takes eight units of one or two bytes; each bit tells whether
/// a unit has one byte. `triples` takes four units of one to three bytes; two bits per unit tell
/// whether it has at least two bytes, and whether it has three.
struct I18NEncodingShuffles {
    I18NShuffles pairs, triples;
};
extern const I18NEncodingShuffles i18nEncodingShuffles;
/// The shuffles of decoding. Of eight units, they keep the units whose bit is set.
extern const I18NShuffles i18nKeepingShuffles;

inline __m128i i18nLoad(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void i18nStore(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
inline __m128i i18nBytes(int value) { return _mm_set1_epi8(static_cast<char>(value)); }
inline __m128i i18nUnits(int value) { return _mm_set1_epi16(static_cast<short>(value)); }
inline unsigned i18nMask(__m128i bytes) { return static_cast<unsigned>(_mm_movemask_epi8(bytes)); }
/// Takes bytes from b where the mask is set, and from a elsewhere.
inline __m128i i18nBlend(__m128i a, __m128i b, __m128i mask) {
    return _mm_or_si128(_mm_andnot_si128(mask, a), _mm_and_si128(mask, b));
}

#endif
