#include "QBLCore/Types/QBLByteBuffer.hpp"

#include <sys/resource.h>

#include <climits>
#include <fstream>
#include <functional>
#include <new>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Types/QBLByteBufferView.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/ThrowChecks.hpp"

namespace {

const auto kHalf = QBLByteBuffer::GROW_BY_HALF;

std::string contentsOf(const QBLByteBuffer& buffer) {
    EXPECT_EQ('\0', buffer.str()[buffer.pcount()]);
    return std::string(buffer.str(), buffer.pcount());
}

}  // namespace

// fuzz/QBLByteBufferFuzz.cpp checks the capacities and appended own bytes, with random commands.
TEST(QBLByteBufferTest, AllocatesLessSpareRoomIfMemoryIsShort) {
    QBLByteBuffer buffer(23, 8);
    unsigned int moves = 0;
    for (int n = 0; n < 10000; ++n) {
        const char* const before = buffer.str();
        fault::failAllocation(0);
        buffer << 'c';
        moves += buffer.str() != before;
    }
    fault::failAllocation(-1);
    EXPECT_EQ(std::string(10000, 'c'), contentsOf(buffer));
    EXPECT_GT(50U, moves) << "1247 moves if it grows by single blocks";
}

TEST(QBLByteBufferTest, AppendsEveryType) {
    for (const unsigned int room : {0U, 1000U}) {
        QBLByteBuffer buffer(room);
        buffer.appendChars("a\0b", 3) << static_cast<const char*>(nullptr) << '\0' << -1 << INT_MIN
                                      << UINT_MAX << LONG_MIN << ULONG_MAX;
        std::string expected = std::string("a\0b(null)\0", 10) + "-1-21474836484294967295" +
                               std::to_string(LONG_MIN) + std::to_string(ULONG_MAX);
        EXPECT_EQ(expected, contentsOf(buffer));
    }
}

TEST(QBLByteBufferTest, AppendsRangesOfBytesAndIsOne) {
    struct Both : std::string {
        operator const char*() const { return "pointer"; }
    };
    QBLByteBuffer buffer;
    buffer << std::string("a\0b", 3) << std::vector<unsigned char>{'c'} << std::string_view();
    EXPECT_EQ(std::string_view("a\0bc", 4), qblView(buffer));
    buffer << qblView(buffer) << Both();
    EXPECT_EQ(std::string("a\0bca\0bcpointer", 15), std::string(buffer.begin(), buffer.end()));
    struct Huge {
        const char* data() const { return ""; }
        volatile std::size_t all = SIZE_MAX;
        std::size_t size() const { return all; }
    };
    EXPECT_THROW(buffer << Huge(), QBLOutOfMemoryError);
    EXPECT_EQ(15U, std::size(buffer));
}

TEST(QBLByteBufferTest, RefusesSizesBeyondItsLimit) {
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
    EXPECT_EQ("x", contentsOf(half));
}

TEST(QBLByteBufferTest, PassesOnExceptionsOfANewHandler) {
    const std::new_handler before = std::set_new_handler([] { throw 42; });
    const std::string text(600, 't');
    QBLByteBuffer buffer(kHalf, 4);
    buffer << "full";
    for (const std::function<void()>& operation : std::initializer_list<std::function<void()>>{
             [&] { buffer << text.c_str(); }, [&] { buffer = QBLByteBuffer(1000); },
             [&] { buffer.printf("%s", text.c_str()); }, [&] { QBLByteBuffer(buffer) << 'c'; }}) {
        for (long n = 0, left = 1; left != 0; ++n) {
            fault::failAllocation(n);
            try {
                operation();
                left = 0;
            } catch (int thrown) {
                EXPECT_EQ(42, thrown);
                EXPECT_EQ("full", contentsOf(buffer));
            }
            fault::failAllocation(-1);
        }
        buffer = QBLByteBuffer(kHalf, 4);
        buffer << "full";
    }
    std::set_new_handler(before);
}

// Sanitizers abort when memory runs out, or need the whole address space.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(QBLByteBufferTest, CallsNewHandlersOnlyForNeededMemory) {
    constexpr unsigned int kMiB = 1U << 20;
    EXPECT_EQ(0, inChild([] {
                  QBLByteBuffer buffer(24 * kMiB - 8, 8);
                  buffer.setLength(24 * kMiB - 1);
                  unsigned long pages = 0;
                  std::ifstream("/proc/self/statm") >> pages;
                  const rlim_t room = pages * 4096 + 30 * kMiB;
                  const rlimit most = {room, room};
                  setrlimit(RLIMIT_AS, &most);
                  std::set_new_handler([] { _exit(9); });
                  buffer << 'c';
                  return buffer.pcount() == 24 * kMiB ? 0 : 1;
              }));
}
#endif

TEST(QBLByteBufferTest, ThrowsAssertErrorsWithTheirStatement) {
    QBLByteBuffer buffer(kHalf);
    QBL_EXPECT_THROW(buffer.roundUpToBlockSizeMultiple(1), QBLAssertError,
                     "QBL_ASSERT_NAMED(( 0 != m_iBlockSize ), \"[QBLByteBuffer::roundUpToBlock"
                     "SizeMultiple] The allocation block size cannot be zero.\");");
    EXPECT_EQ(5, buffer.printf("%s %.2f", "", 0.25));
    QBL_EXPECT_THROW(
        buffer.printf("%lc", wint_t{0xD800}), QBLAssertError,
        "QBL_ASSERT_NAMED(( 0 <= i ), \"[QBLByteBuffer::printf] vsnprintf failed.\");");
    EXPECT_EQ(" 0.25", contentsOf(buffer));
}
