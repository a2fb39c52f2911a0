#include "QBLCore/Utility/QBLUtCrc32.hpp"

#include "QBLCore/Utility/internal/QBLCrc32Kernels.hpp"

static_assert(sizeof(unsigned int) == sizeof(std::uint32_t), "getCrcTable() returns this table");

unsigned long QBLUtCrc32::crc32(unsigned long crc, const unsigned char* data, unsigned int length) {
    if (data == nullptr) return crc;
    const std::uint32_t reg = ~static_cast<std::uint32_t>(crc);
    if (length >= kQBLCrc32Long) return ~qblCrc32LongKernel()(reg, data, length);
    return ~(length >= 16 && qblCrc32HasProducts() ? qblCrc32Products(reg, data, length)
                                                   : qblCrc32Tables(reg, data, length));
}

const unsigned int* QBLUtCrc32::getCrcTable() { return kQBLCrc32Tables.withZeros[0]; }
