#ifndef QBLCORE_UTILITY_INTERNAL_QBLCRC32KERNELS_HPP
#define QBLCORE_UTILITY_INTERNAL_QBLCRC32KERNELS_HPP

#include <cstddef>
#include <cstdint>

// The register, in and out, is the complement of the checksum; its lowest bit is the coefficient of
// the highest power of x, as in all that is reflected.

constexpr std::uint32_t kQBLCrc32Polynomial = 0xEDB88320;

/// One bit further: the register times x, modulo the polynomial.
constexpr std::uint32_t qblCrc32Step(std::uint32_t reg) {
    return reg >> 1 ^ (kQBLCrc32Polynomial & (0U - (reg & 1)));
}

/// Sixteen tables: by number, a byte with so many bytes behind it.
struct QBLCrc32Tables {
    std::uint32_t behind[16][256];
};
extern const QBLCrc32Tables kQBLCrc32Tables;

/// Any processor.
std::uint32_t qblCrc32Tables(std::uint32_t reg, const unsigned char* data, std::size_t length);

/// Only where qblCrc32HasProducts() is true; for 16 bytes and more.
std::uint32_t qblCrc32Products(std::uint32_t reg, const unsigned char* data, std::size_t length);
inline bool qblCrc32HasProducts() {
    return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("avx");
}

#endif
