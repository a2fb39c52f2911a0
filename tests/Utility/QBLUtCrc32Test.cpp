#include <gtest/gtest.h>

#include <random>

#include "fuzz/support/Crc32Checks.hpp"

namespace {

const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

unsigned long crcOf(unsigned long crc, const std::string& text) {
    return QBLUtCrc32::crc32(crc, bytesOf(text), static_cast<unsigned>(text.size()));
}

TEST(QBLUtCrc32Test, ComputesKnownChecksums) {
    const struct {
        unsigned long crc, expected;
        std::string text;
    } rows[] = {{0, 0xCBF43926, "123456789"}, {0xFFFFFFFF, 0xC54AAE31, "a"}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.expected, crcOf(row.crc, row.text)) << row.text;
        // If long has 32 bits, this is the same call as above.
        EXPECT_EQ(row.expected, crcOf(row.crc - 0xFFFFFFFFUL - 1, row.text))
            << "bits above 32 must be ignored";
        EXPECT_EQ(row.crc, QBLUtCrc32::crc32(row.crc, nullptr, 9));
    }
    for (unsigned i = 0; i < 256; ++i) {
        const auto byte = static_cast<unsigned char>(i);
        EXPECT_EQ(crc32BitByBit(0, &byte, 1), QBLUtCrc32::getCrcTable()[i]) << i;
    }
}

TEST(QBLUtCrc32Test, AllKernelsAgreeForEveryLengthAndAlignment) {
    std::mt19937 random(3);
    std::string data(70000, '\0');
    for (char& c : data) c = static_cast<char>(random());
    for (std::size_t n = 0; n < 69000; n += n < 800 ? 1 : 4999) {
        const auto reg = static_cast<std::uint32_t>(random());
        ASSERT_EQ("", wrongCrc32Levels(reg, bytesOf(data) + n % 31, n, random() % (n + 1))) << n;
    }
    std::string missing;
    auto* best = &qblCrc32Tables;
    for (const Crc32Level& level : kCrc32Levels) {
        if (level.runs) best = level.kernel;
        if (!level.runs) missing += level.name + std::string(" ");
    }
    EXPECT_EQ(best, qblCrc32LongKernel());
    if (!missing.empty()) GTEST_SKIP() << "passed, but this processor lacks: " << missing;
}

}  // namespace
