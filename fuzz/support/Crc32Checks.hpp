#ifndef FUZZ_SUPPORT_CRC32CHECKS_HPP
#define FUZZ_SUPPORT_CRC32CHECKS_HPP

#include <algorithm>
#include <memory>
#include <string>

#include "QBLCore/Utility/QBLUtCrc32.hpp"
#include "QBLCore/Utility/internal/QBLCrc32Kernels.hpp"

struct Crc32Level {
    const char* name;
    std::size_t least;
    bool runs;
    std::uint32_t (*kernel)(std::uint32_t, const unsigned char*, std::size_t);
};
inline const Crc32Level kCrc32Levels[] = {
    {"tables", 0, true, &qblCrc32Tables},
    {"products", 16, qblCrc32HasProducts(), &qblCrc32Products},
    {"wide products", 128, qblCrc32HasWideProducts(), &qblCrc32WideProducts},
    {"widest products", 256, qblCrc32HasWidestProducts(), &qblCrc32WidestProducts}};

inline std::uint32_t crc32BitByBit(std::uint32_t reg, const unsigned char* data,
                                   std::size_t length) {
    for (; length != 0; --length) {
        reg ^= *data++;
        for (int bit = 0; bit < 8; ++bit) reg = reg >> 1 ^ ((reg & 1) != 0 ? 0xEDB88320U : 0U);
    }
    return reg;
}

/// Returns the names of the levels with a wrong result. The kernels read a copy of the data in a
/// block of the same size, so that a sanitizer detects a read of other bytes. The public function
/// gets the data in two parts.
inline std::string wrongCrc32Levels(std::uint32_t reg, const unsigned char* data,
                                    std::size_t length, std::size_t split) {
    const std::unique_ptr<unsigned char[]> block(new unsigned char[length]);
    std::copy(data, data + length, block.get());
    const std::uint32_t expected = crc32BitByBit(reg, data, length);
    std::string wrong;
    for (const Crc32Level& level : kCrc32Levels)
        if (level.runs && length >= level.least &&
            level.kernel(reg, block.get(), length) != expected)
            wrong += level.name + std::string(" ");
    const unsigned long first = QBLUtCrc32::crc32(~reg, data, static_cast<unsigned>(split));
    const auto whole = static_cast<std::uint32_t>(
        QBLUtCrc32::crc32(first, data + split, static_cast<unsigned>(length - split)));
    return whole == ~expected ? wrong : wrong + "crc32()";
}

#endif
