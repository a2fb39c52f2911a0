#include <cstring>

#include "QBLCore/Utility/internal/QBLCrc32Kernels.hpp"

namespace {

constexpr QBLCrc32Tables makeTables() {
    QBLCrc32Tables tables{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t reg = byte;
        for (auto& table : tables.withZeros) {
            for (int bit = 0; bit < 8; ++bit) reg = qblCrc32Step(reg);
            table[byte] = reg;
        }
    }
    return tables;
}

std::uint32_t word(const unsigned char* data) {
    std::uint32_t bytes;
    std::memcpy(&bytes, data, sizeof bytes);
    return bytes;
}

/// Returns the remainder of four bytes with n zero bytes after them.
std::uint32_t four(std::uint32_t bytes, int n) {
    const auto& withZeros = kQBLCrc32Tables.withZeros;
    return withZeros[n + 3][bytes & 255] ^ withZeros[n + 2][bytes >> 8 & 255] ^
           withZeros[n + 1][bytes >> 16 & 255] ^ withZeros[n][bytes >> 24];
}

}  // namespace

constexpr QBLCrc32Tables kQBLCrc32Tables = makeTables();

// M. E. Kounavis and F. L. Berry, "A Systematic Approach to Building High Performance
// Software-based CRC Generators" (2005): each step processes several bytes, each byte with its own
// table.
std::uint32_t qblCrc32Tables(std::uint32_t reg, const unsigned char* data, std::size_t length) {
    for (; length >= 16; length -= 16, data += 16)
        reg = four(reg ^ word(data), 12) ^ four(word(data + 4), 8) ^ four(word(data + 8), 4) ^
              four(word(data + 12), 0);
    if (length >= 8) {
        reg = four(reg ^ word(data), 4) ^ four(word(data + 4), 0);
        length -= 8, data += 8;
    }
    for (; length != 0; --length, ++data)
        reg = reg >> 8 ^ kQBLCrc32Tables.withZeros[0][(reg ^ *data) & 255];
    return reg;
}
