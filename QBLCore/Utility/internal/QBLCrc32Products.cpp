#include <immintrin.h>

#include "QBLCore/Utility/internal/QBLCrc32Kernels.hpp"

// V. Gopal et al., "Fast CRC Computation for Generic Polynomials Using PCLMULQDQ Instruction"
// (Intel, 2009): multiplying a block by the remainder of a power of x moves the block past the
// bytes that this power stands for. The constants have the names of the paper.
// AVX is used for its three-operand instructions, which need no copies of their operands.
#define WITH_PRODUCTS __attribute__((target("avx,pclmul")))

namespace {

/// The polynomial's 33 bits, reflected.
constexpr std::uint64_t kPolynomial = static_cast<std::uint64_t>(kQBLCrc32Polynomial) << 1 | 1;

/// Returns the quotient of x^64 and the polynomial, 33 bits, reflected. Each bit of the quotient is
/// the bit that leaves the register in one step.
constexpr std::uint64_t quotient() {
    std::uint64_t bits = 1;
    std::uint32_t reg = kQBLCrc32Polynomial;  // the remainder after the quotient's first bit
    for (int power = 1; power <= 32; ++power) {
        bits |= static_cast<std::uint64_t>(reg & 1) << power;
        reg = qblCrc32Step(reg);
    }
    return bits;
}

// Processes six blocks at a time; the paper processes four. Each block waits for its previous
// product, but a product can start in every cycle. More blocks do not fit into the registers of
// 32-bit x86.
constexpr std::uint64_t kK1 = qblCrc32Remainder(6 * 128 + 32),
                        kK2 = qblCrc32Remainder(6 * 128 - 32);
constexpr std::uint64_t kTwoLow = qblCrc32Remainder(2 * 128 + 32),
                        kTwoHigh = qblCrc32Remainder(2 * 128 - 32);
constexpr std::uint64_t kK3 = qblCrc32Remainder(128 + 32), kK4 = qblCrc32Remainder(128 - 32);
constexpr std::uint64_t kK5 = qblCrc32Remainder(64);
constexpr std::uint64_t kMu = quotient();
static_assert(qblCrc32Remainder(4 * 128 + 32) == 0x154442bd4 &&
                  qblCrc32Remainder(4 * 128 - 32) == 0x1c6e41596 && kK3 == 0x1751997d0 &&
                  kK4 == 0x0ccaa009e && kK5 == 0x163cd6124 && kMu == 0x1f7011641 &&
                  kPolynomial == 0x1db710641,
              "the paper's constants");

inline __m128i pair(std::uint64_t low, std::uint64_t high) {
    return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
}
inline __m128i load(const unsigned char* data) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(data));
}

/// Moves a block by the distance that the factors stand for, and combines it with the block there.
WITH_PRODUCTS inline __m128i fold(__m128i block, __m128i factors, __m128i next) {
    const __m128i low = _mm_clmulepi64_si128(block, factors, 0x00);
    const __m128i high = _mm_clmulepi64_si128(block, factors, 0x11);
    return _mm_xor_si128(_mm_xor_si128(next, low), high);
}

/// Returns the register after the block. Reduces the block to 96 bits, then to 64 bits, and then by
/// Barrett's method to 32 bits.
WITH_PRODUCTS inline std::uint32_t reduce(__m128i block) {
    const __m128i word = pair(0xffffffff, 0);
    block =
        _mm_xor_si128(_mm_srli_si128(block, 8), _mm_clmulepi64_si128(block, pair(kK3, kK4), 0x10));
    block = _mm_xor_si128(_mm_srli_si128(block, 4),
                          _mm_clmulepi64_si128(_mm_and_si128(block, word), pair(kK5, 0), 0x00));
    const __m128i barrett = pair(kPolynomial, kMu);
    __m128i times = _mm_clmulepi64_si128(_mm_and_si128(block, word), barrett, 0x10);
    times = _mm_clmulepi64_si128(_mm_and_si128(times, word), barrett, 0x00);
    return static_cast<std::uint32_t>(
        _mm_cvtsi128_si32(_mm_srli_si128(_mm_xor_si128(block, times), 4)));
}

/// Returns the register after the block and the data that follow it.
WITH_PRODUCTS __attribute__((always_inline)) inline std::uint32_t finish(__m128i block,
                                                                         const unsigned char* data,
                                                                         std::size_t length) {
    const __m128i near = pair(kK3, kK4);
    for (; length >= 16; data += 16, length -= 16) block = fold(block, near, load(data));
    const std::uint32_t done = reduce(block);
    return length == 0 ? done : qblCrc32Tables(done, data, length);
}

}  // namespace

WITH_PRODUCTS std::uint32_t qblCrc32Products(std::uint32_t reg, const unsigned char* data,
                                             std::size_t length) {
    __m128i block = _mm_xor_si128(load(data), _mm_cvtsi32_si128(static_cast<int>(reg)));
    const __m128i near = pair(kK3, kK4);
    data += 16, length -= 16;
    if (length >= 80 + 96) {
        const __m128i far = pair(kK1, kK2);
        __m128i b1 = load(data), b2 = load(data + 16), b3 = load(data + 32);
        __m128i b4 = load(data + 48), b5 = load(data + 64);
        for (data += 80, length -= 80; length >= 96; data += 96, length -= 96) {
            block = fold(block, far, load(data));
            b1 = fold(b1, far, load(data + 16));
            b2 = fold(b2, far, load(data + 32));
            b3 = fold(b3, far, load(data + 48));
            b4 = fold(b4, far, load(data + 64));
            b5 = fold(b5, far, load(data + 80));
        }
        block = fold(fold(fold(block, near, b1), near, b2), near, b3);
        block = fold(fold(block, near, b4), near, b5);
    } else if (length >= 48) {
        const __m128i last = fold(load(data + 16), near, load(data + 32));
        block = fold(fold(block, near, load(data)), pair(kTwoLow, kTwoHigh), last);
        data += 48, length -= 48;
    }
    return finish(block, data, length);
}

WITH_PRODUCTS std::uint32_t qblCrc32AfterBlock(__m128i block, const unsigned char* data,
                                               std::size_t length) {
    return finish(block, data, length);
}
