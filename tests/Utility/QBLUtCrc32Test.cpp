#include "QBLCore/Utility/QBLUtCrc32.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "QBLCore/Utility/internal/QBLCrc32Kernels.hpp"

namespace {

const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

unsigned long crcOf(unsigned long crc, const std::string& text) {
    return QBLUtCrc32::crc32(crc, bytesOf(text), static_cast<unsigned>(text.size()));
}

std::uint32_t bitByBit(std::uint32_t reg, const unsigned char* data, std::size_t length) {
    for (; length != 0; --length) {
        reg ^= *data++;
        for (int bit = 0; bit < 8; ++bit) reg = reg >> 1 ^ ((reg & 1) != 0 ? 0xEDB88320U : 0U);
    }
    return reg;
}

TEST(QBLUtCrc32Test, ComputesKnownChecksums) {
    const struct {
        unsigned long crc, expected;
        std::string text;
    } rows[] = {{0, 0xCBF43926, "123456789"},
                {0, 0x414FA339, "The quick brown fox jumps over the lazy dog"},
                {0, 0x190A55AD, std::string(32, '\0')},
                {0xFFFFFFFF, 0xC54AAE31, "a"},
                {0xFFFFFFFF, 0xFFFFFFFF, std::string(4, '\0')}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.expected, crcOf(row.crc, row.text)) << row.text;
        // If long has 32 bits, this is the same call as above.
        EXPECT_EQ(row.expected, crcOf(row.crc - 0xFFFFFFFFUL - 1, row.text))
            << "bits above 32 must be ignored";
        EXPECT_EQ(row.crc, QBLUtCrc32::crc32(row.crc, nullptr, 9));
    }
    for (unsigned i = 0; i < 256; ++i) {
        const auto byte = static_cast<unsigned char>(i);
        EXPECT_EQ(bitByBit(0, &byte, 1), QBLUtCrc32::getCrcTable()[i]) << i;
    }
}

TEST(QBLUtCrc32Test, AllKernelsAgreeForEveryLengthAndAlignment) {
    std::mt19937 random(3);
    std::string data(70000, '\0');
    for (char& c : data) c = static_cast<char>(random());
    for (std::size_t n = 0; n < 69000; n += n < 400 ? 1 : 4999) {
        const unsigned char* const at = bytesOf(data) + n % 31;
        const auto reg = static_cast<std::uint32_t>(random());
        const std::uint32_t expected = bitByBit(reg, at, n);
        ASSERT_EQ(expected, qblCrc32Tables(reg, at, n)) << n;
        if (n >= 16 && qblCrc32HasProducts()) {
            ASSERT_EQ(expected, qblCrc32Products(reg, at, n)) << n;
        }
        const std::size_t split = n != 0 ? random() % n : 0;
        const unsigned long first = QBLUtCrc32::crc32(~reg, at, static_cast<unsigned>(split));
        ASSERT_EQ(~expected, static_cast<std::uint32_t>(QBLUtCrc32::crc32(
                                 first, at + split, static_cast<unsigned>(n - split))))
            << n << ' ' << split;
    }
    if (!qblCrc32HasProducts())
        GTEST_SKIP() << "passed, but this processor lacks carry-less products";
}

}  // namespace
