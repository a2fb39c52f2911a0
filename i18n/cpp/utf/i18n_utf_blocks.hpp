#ifndef I18N_CPP_UTF_I18N_UTF_BLOCKS_HPP
#define I18N_CPP_UTF_I18N_UTF_BLOCKS_HPP

#include <tmmintrin.h>

#include <cstddef>
#include <cstdint>

/// Compiles a function for processors that i18nHasShuffles() is true on. x86-64 has no more than
/// SSE2 for certain, and neither has what the 32-bit library is compiled for.
#define I18N_WITH_SHUFFLES __attribute__((target("ssse3,popcnt")))

inline bool i18nHasShuffles() {
    return __builtin_cpu_supports("ssse3") && __builtin_cpu_supports("popcnt");
}

#define I18N_WITH_WIDE_BLOCKS __attribute__((target("avx2,popcnt")))
inline bool i18nHasWideBlocks() {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt");
}

/// Transcoding of well-formed text by blocks, without a branch for each character. What a block is
/// in the other encoding is computed for every place in it at once; what no character ends at, or
/// has no byte for, is then taken out by shuffles from tables, as in D. Lemire and W. Mula,
/// "Transcoding billions of Unicode characters per second with SIMD instructions" (2022).
///
/// Both stop in front of what is ill-formed and near the end, where the pointers then are.

struct I18NDecoding {
    const unsigned char* at;
    const unsigned char* end;
    char16_t* out;  ///< room for as many units as there are bytes
    /// Not all 0 once there was a character that i18nMayNeedNormalization() is true of.
    __m128i mayNeedNormalization = _mm_setzero_si128();
};
/// Decodes UTF-8; a NUL byte is left too.
void i18nDecodeBlocks(I18NDecoding& decoding);

struct I18NEncoding {
    const char16_t* at;
    const char16_t* end;
    char* out;  ///< room for the UTF-8 form
};
/// Encodes UTF-16; lone surrogates are ill-formed.
void i18nEncodeBlocks(I18NEncoding& encoding);
/// The same where i18nHasWideBlocks() is true, with larger blocks.
void i18nEncodeWideBlocks(I18NEncoding& encoding);

/// Shuffles by a mask of eight bits.
struct alignas(16) I18NShuffles {
    std::uint8_t bytes[256][16];
};
/// What encoding takes out: of eight units of one or two bytes, by which have one; of four of one
/// to three, by two bits each, whether there are two bytes at least and whether there are three.
struct I18NEncodingShuffles {
    I18NShuffles pairs, triples;
};
extern const I18NEncodingShuffles i18nEncodingShuffles;

inline __m128i i18nLoad(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline void i18nStore(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
inline __m128i i18nBytes(int value) { return _mm_set1_epi8(static_cast<char>(value)); }
inline __m128i i18nUnits(int value) { return _mm_set1_epi16(static_cast<short>(value)); }
inline unsigned i18nMask(__m128i bytes) { return static_cast<unsigned>(_mm_movemask_epi8(bytes)); }
/// From b where a byte of the mask is set, else from a.
inline __m128i i18nBlend(__m128i a, __m128i b, __m128i mask) {
    return _mm_or_si128(_mm_andnot_si128(mask, a), _mm_and_si128(mask, b));
}

#endif
