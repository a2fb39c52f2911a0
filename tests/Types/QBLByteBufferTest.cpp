#include "QBLCore/Types/QBLByteBuffer.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <string>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "tests/support/FaultInjection.hpp"
#include "tests/support/ThrowChecks.hpp"

namespace {

const auto kBlock = QBLByteBuffer::GROW_BY_BLOCK, kHalf = QBLByteBuffer::GROW_BY_HALF;

std::string textOf(const QBLByteBuffer& buffer) {
    EXPECT_EQ('\0', buffer.str()[buffer.pcount()]);
    return std::string(buffer.str(), buffer.pcount());
}

/// The longest length that the buffer takes.
unsigned int capacityOf(QBLByteBuffer& buffer) {
    const unsigned int count = buffer.pcount();
    unsigned int n = count;
    while (buffer.setLength(n + 1), buffer.pcount() == n + 1) ++n;
    buffer.setLength(count);
    return n;
}

}  // namespace

// Commands in every order, capacities included, are fuzz/QBLByteBufferFuzz.cpp's.
TEST(QBLByteBufferTest, GrowsByBlocksOrByHalf) {
    const struct {
        QBLByteBuffer::Growth growth;
        unsigned int size, block, before, n, after;
    } table[] = {{kBlock, 0, 0, 7, 8, 15},  {kBlock, 20, 10, 29, 30, 39}, {kHalf, 5, 0, 5, 6, 6},
                 {kHalf, 8, 16, 8, 11, 12}, {kHalf, 8, 0, 8, 12, 12},     {kHalf, 0, 0, 0, 1, 1}};
    for (const auto& row : table) {
        QBLByteBuffer buffer(row.growth, row.size, row.block);
        EXPECT_EQ(row.before, capacityOf(buffer));
        buffer.reserve(row.n);
        EXPECT_EQ(row.after, capacityOf(buffer)) << row.size << " to " << row.n;
        buffer.setLength(row.after);
        EXPECT_EQ(std::string(row.after, '\0'), textOf(buffer)) << "nothing undefined is shown";
    }
}

TEST(QBLByteBufferTest, AppendsEveryType) {
    for (const unsigned int room : {0U, 1000U}) {
        QBLByteBuffer buffer(room);
        buffer.appendChars("a\0b", 3) << static_cast<const char*>(nullptr) << '\0' << -1 << INT_MIN
                                      << UINT_MAX << LONG_MIN << ULONG_MAX;
        std::string expected = std::string("a\0b(null)\0", 10) + "-1-21474836484294967295" +
                               std::to_string(LONG_MIN) + std::to_string(ULONG_MAX);
        EXPECT_EQ(expected, textOf(buffer));
        buffer.reset();
        EXPECT_EQ(10, buffer.setHexRadix(5));
        buffer << 255 << ' ' << -2 << ' ' << 171U << ' ' << -1L;
        EXPECT_EQ("ff fffffffe ab " + std::string(2 * sizeof(long), 'f'), textOf(buffer));
        EXPECT_EQ(16, buffer.setHexRadix(0));
    }
}

TEST(QBLByteBufferTest, IsAsBeforeWhereMemoryEnds) {
    const std::string text(600, 't');
    QBLByteBuffer other(1000, 8);
    const std::function<void(QBLByteBuffer&)> operations[] = {[](QBLByteBuffer& b) { b.reserve(1000); },
                                                              [&](QBLByteBuffer& b) { b << text.c_str(); },
                                                              [](QBLByteBuffer& b) { b << 'c'; },
                                                              [&](QBLByteBuffer& b) { b.printf("%s", text.c_str()); },
                                                              [&](QBLByteBuffer& b) { b = other; },
                                                              [](QBLByteBuffer& b) { QBLByteBuffer(b) << 'c'; }};
    for (const auto& operation : operations) {
        const long failed = fault::eachAllocation([&] {
            try {
                QBLByteBuffer buffer(kHalf, 4);
                buffer << "full";
                try {
                    operation(buffer);
                } catch (QBLOutOfMemoryError&) {
                    EXPECT_EQ("full", textOf(buffer));
                    EXPECT_EQ("full0", textOf(buffer << 0)) << "and of use";
                }
            } catch (QBLOutOfMemoryError&) {
            }
        });
        EXPECT_LT(1, failed);
    }
    QBLByteBuffer block(0, 8), half(kHalf);
    half << 'x';
    volatile unsigned int most = 0xFFFFFFFF;
    half.setPrintfBufferSize(0xFFFFFFFF);
    for (const std::function<void()>& tooMuch : std::initializer_list<std::function<void()>>{
             [&] { block.roundUpToBlockSizeMultiple(0xFFFFFFF8); },
             [&] { block.reserve(0xFFFFFFFF); }, [&] { half.reserve(0xFFFFFFFF); },
             [&] { QBLByteBuffer(kHalf, 0xFFFFFFFF); }, [&] { QBLByteBuffer(0xFFFFFFF8, 8); },
             [&] { half.printf("y"); }, [&] { half.appendChars("y", most); }})
        QBL_EXPECT_THROW(tooMuch(), QBLOutOfMemoryError, nullptr);
    EXPECT_EQ("x", textOf(half));
}

TEST(QBLByteBufferTest, SaysWhatItAsserts) {
    QBLByteBuffer buffer(kHalf);
    QBL_EXPECT_THROW(buffer.roundUpToBlockSizeMultiple(1), QBLAssertError,
                     "QBL_ASSERT_NAMED(( 0 != m_iBlockSize ), \"[QBLByteBuffer::roundUpToBlock"
                     "SizeMultiple] The allocation block size cannot be zero.\");");
    EXPECT_EQ(5, buffer.printf("%s %.2f", "", 0.25));
    QBL_EXPECT_THROW(
        buffer.printf("%lc", wint_t{0x4E2D}), QBLAssertError,
        "QBL_ASSERT_NAMED(( 0 <= i ), \"[QBLByteBuffer::printf] vsnprintf failed.\");");
    EXPECT_EQ(" 0.25", textOf(buffer));
}
