#ifndef QBLCORE_TYPES_INTERNAL_QBLPOWERSOFTEN_HPP
#define QBLCORE_TYPES_INTERNAL_QBLPOWERSOFTEN_HPP

#include <array>
#include <cstdint>

/// The highest 64 bits of powers of ten; the lower bits are truncated. The table has all powers
/// that qblWriteReal() needs.
constexpr int kQBLLowestPower = -303, kQBLHighestPower = 332;
using QBLPowersOfTen = std::array<std::uint64_t, kQBLHighestPower - kQBLLowestPower + 1>;
extern const QBLPowersOfTen kQBLPowersOfTen;

inline std::uint64_t qblPowerOfTen(int power) {
    return kQBLPowersOfTen[static_cast<unsigned>(power - kQBLLowestPower)];
}
/// Returns the exponent of the highest power of two that is not above 10^power. Apart from the
/// truncated lower bits, 10^power is qblPowerOfTen(power) times 2^(this exponent - 63).
inline int qblPowerOfTwo(int power) { return power * 217706 >> 16; }

/// Returns the upper 64 bits of the 128-bit product.
inline std::uint64_t qblMultiplyHigh(std::uint64_t a, std::uint64_t b) {
#ifdef __SIZEOF_INT128__
    __extension__ using Wide = unsigned __int128;
    return static_cast<std::uint64_t>(Wide{a} * b >> 64);
#else
    const std::uint64_t aLow = static_cast<std::uint32_t>(a), aHigh = a >> 32;
    const std::uint64_t bLow = static_cast<std::uint32_t>(b), bHigh = b >> 32;
    const std::uint64_t middle = aHigh * bLow + (aLow * bLow >> 32);
    const std::uint64_t other = aLow * bHigh + static_cast<std::uint32_t>(middle);
    return aHigh * bHigh + (middle >> 32) + (other >> 32);
#endif
}

#endif
