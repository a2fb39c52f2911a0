#ifndef QBLCORE_UTILITY_INTERNAL_QBLCRC32KERNELS_HPP
#define QBLCORE_UTILITY_INTERNAL_QBLCRC32KERNELS_HPP

#include <cstddef>
#include <cstdint>

// The register, as argument and as result, is the complement of the checksum. All values are
// reflected: the lowest bit is the coefficient of the highest power of x.

constexpr std::uint32_t kQBLCrc32Polynomial = 0xEDB88320;

/// Moves the register by one bit: multiplies it by x, modulo the polynomial.
constexpr std::uint32_t qblCrc32Step(std::uint32_t reg) {
    return reg >> 1 ^ (kQBLCrc32Polynomial & (0U - (reg & 1)));
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

#endif
