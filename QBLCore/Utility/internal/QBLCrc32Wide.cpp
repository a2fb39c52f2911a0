// The algorithm of QBLCrc32Products.cpp, for processors that multiply two or four blocks with one
// instruction (VPCLMULQDQ with AVX2 or AVX-512). The loop moves four vectors at a time, each past
// the other three vectors. After the loop, each vector is moved onto the next vector and combined
// with it, and then each block of the last vector onto the next block. qblCrc32AfterBlock()
// processes the bytes that do not fill a vector.
#if defined(__GNUC__) && !defined(__clang__)
// GCC 12 reports values that its own header leaves undefined on purpose.
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include "QBLCore/Utility/internal/QBLCrc32Kernels.hpp"

#define WITH_WIDE_PRODUCTS __attribute__((target("avx2,pclmul,vpclmulqdq")))
#define WITH_WIDEST_PRODUCTS __attribute__((target("avx2,avx512f,pclmul,vpclmulqdq")))

namespace {

/// Returns the factors that move a block by a distance in bytes.
template <unsigned kBytes>
inline __m128i factors() {
    constexpr std::uint64_t kLow = qblCrc32Remainder(kBytes * 8 + 32),
                            kHigh = qblCrc32Remainder(kBytes * 8 - 32);
    return _mm_set_epi64x(static_cast<long long>(kHigh), static_cast<long long>(kLow));
}

WITH_WIDE_PRODUCTS inline __m256i load32(const unsigned char* data) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(data));
}
WITH_WIDEST_PRODUCTS inline __m512i load64(const unsigned char* data) {
    return _mm512_loadu_si512(data);
}

/// Moves each block by the distance that its factors stand for, and combines it with the block
/// there.
WITH_WIDE_PRODUCTS inline __m256i fold(__m256i blocks, __m256i by, __m256i next) {
    const __m256i low = _mm256_clmulepi64_epi128(blocks, by, 0x00);
    const __m256i high = _mm256_clmulepi64_epi128(blocks, by, 0x11);
    return _mm256_xor_si256(_mm256_xor_si256(next, low), high);
}
WITH_WIDEST_PRODUCTS inline __m512i fold(__m512i blocks, __m512i by, __m512i next) {
    constexpr int kXorOfThree = 0x96;
    return _mm512_ternarylogic_epi64(_mm512_clmulepi64_epi128(blocks, by, 0x00),
                                     _mm512_clmulepi64_epi128(blocks, by, 0x11), next, kXorOfThree);
}

/// Moves the first block onto the second block, and combines both.
WITH_WIDE_PRODUCTS inline __m128i join(__m256i blocks) {
    const __m128i first = _mm256_castsi256_si128(blocks), by = factors<16>();
    return _mm_xor_si128(_mm256_extracti128_si256(blocks, 1),
                         _mm_xor_si128(_mm_clmulepi64_si128(first, by, 0x00),
                                       _mm_clmulepi64_si128(first, by, 0x11)));
}

}  // namespace

WITH_WIDE_PRODUCTS std::uint32_t qblCrc32WideProducts(std::uint32_t reg, const unsigned char* data,
                                                      std::size_t length) {
    const __m256i far = _mm256_broadcastsi128_si256(factors<128>());
    const __m256i near = _mm256_broadcastsi128_si256(factors<32>());
    const __m128i before = _mm_cvtsi32_si128(static_cast<int>(reg));
    __m256i a = _mm256_xor_si256(load32(data), _mm256_zextsi128_si256(before));
    __m256i b = load32(data + 32), c = load32(data + 64), d = load32(data + 96);
    for (data += 128, length -= 128; length >= 128; data += 128, length -= 128) {
        a = fold(a, far, load32(data));
        b = fold(b, far, load32(data + 32));
        c = fold(c, far, load32(data + 64));
        d = fold(d, far, load32(data + 96));
    }
    a = fold(fold(fold(a, near, b), near, c), near, d);
    for (; length >= 32; data += 32, length -= 32) a = fold(a, near, load32(data));
    return qblCrc32AfterBlock(join(a), data, length);
}

WITH_WIDEST_PRODUCTS std::uint32_t qblCrc32WidestProducts(std::uint32_t reg,
                                                          const unsigned char* data,
                                                          std::size_t length) {
    const __m512i far = _mm512_broadcast_i32x4(factors<256>());
    const __m512i near = _mm512_broadcast_i32x4(factors<64>());
    const __m128i before = _mm_cvtsi32_si128(static_cast<int>(reg));
    __m512i a = _mm512_xor_si512(load64(data), _mm512_zextsi128_si512(before));
    __m512i b = load64(data + 64), c = load64(data + 128), d = load64(data + 192);
    for (data += 256, length -= 256; length >= 256; data += 256, length -= 256) {
        a = fold(a, far, load64(data));
        b = fold(b, far, load64(data + 64));
        c = fold(c, far, load64(data + 128));
        d = fold(d, far, load64(data + 192));
    }
    a = fold(fold(fold(a, near, b), near, c), near, d);
    for (; length >= 64; data += 64, length -= 64) a = fold(a, near, load64(data));
    const __m256i lower = _mm512_castsi512_si256(a), upper = _mm512_extracti64x4_epi64(a, 1);
    const __m256i two = fold(lower, _mm256_broadcastsi128_si256(factors<32>()), upper);
    return qblCrc32AfterBlock(join(two), data, length);
}
