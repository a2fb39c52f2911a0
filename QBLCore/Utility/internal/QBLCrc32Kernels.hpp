#ifndef QBLCORE_UTILITY_INTERNAL_QBLCRC32KERNELS_HPP
#define QBLCORE_UTILITY_INTERNAL_QBLCRC32KERNELS_HPP

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

// The register, as argument and as result, is the complement of the checksum. All values are
// reflected: the lowest bit is the coefficient of the highest power of x.

constexpr std::uint32_t kQBLCrc32Polynomial = 0xEDB88320;

/// Moves the register by one bit: multiplies it by x, modulo the polynomial.
constexpr std::uint32_t qblCrc32Step(std::uint32_t reg) {
    return reg >> 1 ^ (kQBLCrc32Polynomial & (0U - (reg & 1)));
}

/// Returns the remainder of x^power, reflected and shifted up by one bit, because the product of
/// two reflected 64-bit numbers is one bit too low.
constexpr std::uint64_t qblCrc32Remainder(unsigned power) {
    std::uint32_t reg = 0x80000000;
    for (unsigned i = 0; i < power; ++i) reg = qblCrc32Step(reg);
    return static_cast<std::uint64_t>(reg) << 1;
}

/// Sixteen tables: withZeros[n] has the remainder of each byte with n zero bytes after it.
struct QBLCrc32Tables {
    std::uint32_t withZeros[16][256];
};
extern const QBLCrc32Tables kQBLCrc32Tables;

/// Returns the register after it has processed the data. Runs on any processor.
std::uint32_t qblCrc32Tables(std::uint32_t reg, const unsigned char* data, std::size_t length);

/// Does the same. Requires: at least 16 bytes, and qblCrc32HasProducts().
std::uint32_t qblCrc32Products(std::uint32_t reg, const unsigned char* data, std::size_t length);
inline bool qblCrc32HasProducts() {
    return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("avx");
}
/// Returns the register after a block and the data that follow it. The block already includes the
/// register before the block. Processes 16 bytes at a time, so the data should be short.
std::uint32_t qblCrc32AfterBlock(__m128i block, const unsigned char* data, std::size_t length);

/// Does the same as qblCrc32Tables(). Requires: at least 128 bytes, and qblCrc32HasWideProducts().
std::uint32_t qblCrc32WideProducts(std::uint32_t reg, const unsigned char* data,
                                   std::size_t length);
inline bool qblCrc32HasWideProducts() {
    return __builtin_cpu_supports("vpclmulqdq") && __builtin_cpu_supports("avx2") &&
           __builtin_cpu_supports("pclmul");
}

/// Does the same as qblCrc32Tables(). Requires: at least 256 bytes, and
/// qblCrc32HasWidestProducts().
std::uint32_t qblCrc32WidestProducts(std::uint32_t reg, const unsigned char* data,
                                     std::size_t length);
inline bool qblCrc32HasWidestProducts() {
    return qblCrc32HasWideProducts() && __builtin_cpu_supports("avx512f");
}

/// The minimum length for the function that qblCrc32LongKernel() returns, which is the fastest one
/// of the processor.
constexpr std::size_t kQBLCrc32Long = 256;
inline auto qblCrc32LongKernel() {
    if (qblCrc32HasWidestProducts()) return &qblCrc32WidestProducts;
    if (qblCrc32HasWideProducts()) return &qblCrc32WideProducts;
    return qblCrc32HasProducts() ? &qblCrc32Products : &qblCrc32Tables;
}

#endif
