#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"

#include <stdexcept>

#include "tests/support/Cancellable.hpp"
#include "tests/support/Workers.hpp"

using namespace std::chrono_literals;

namespace {

/// A number whose copy assignment throws on request.
struct Fragile {
    Fragile() = default;
    explicit Fragile(int n) : number(n) {}
    Fragile(const Fragile& other) = default;
    Fragile& operator=(const Fragile& other) {
        if (s_failing) throw std::runtime_error("copy");
        number = other.number;
        return *this;
    }
    bool operator!=(const Fragile& other) const { return number != other.number; }

    int number = 0;
    static inline bool s_failing = false;
};

}  // namespace

TEST(QBLSentinelQueueTest, FailedCopyKeepsTheItemAndItsPlace) {
    QBLSentinelQueue<Fragile> queue(1);
    Fragile item(1), got;
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(queue.put(item, 0)) << "there is room";
        Fragile::s_failing = true;
        EXPECT_THROW(static_cast<void>(queue.get(got, 0)), std::runtime_error);
        Fragile::s_failing = false;
        EXPECT_FALSE(queue.put(item, 0)) << "the item is still in the queue";
        ASSERT_TRUE(queue.get(got, 0));
        EXPECT_EQ(1, got.number);
        EXPECT_FALSE(queue.get(got, 0));
    }
}

TEST(QBLSentinelQueueTest, WithdrawsAnItemOnceAndReleasesReservedRoom) {
    QBLSentinelQueue<Fragile> queue(2);
    Fragile first(1), second(2), got;
    ASSERT_TRUE(queue.reserve(0));
    queue.putReserved(second);
    ASSERT_TRUE(queue.putFirst(first, 0ms));
    EXPECT_FALSE(queue.reserve(1us));
    EXPECT_TRUE(queue.withdraw(second));
    EXPECT_FALSE(queue.withdraw(second));
    ASSERT_TRUE(queue.reserve(0));
    EXPECT_FALSE(queue.put(second, -1s)) << "the reserved place is not available";
    queue.release();
    EXPECT_TRUE(queue.put(Fragile(2), 0));
    for (const int expected : {1, 2}) {
        ASSERT_TRUE(queue.get(got, 0));
        EXPECT_EQ(expected, got.number);
    }
    EXPECT_FALSE(queue.get(got, 1us));
}

TEST(QBLSentinelQueueTest, WaitsThatTimeOutLoseNeitherItemsNorNulls) {
    QBLSentinelQueue<int> queue;
    const int rounds = kSanitizer ? 2000 : 20000;
    std::atomic<int> left{2 * rounds};
    std::atomic<long long> sum{0};
    Workers getters(3, [&] {
        for (int got = 0; left > 0;) {
            if (!queue.get(got, 1)) continue;
            sum += got;
            left -= got != 0 ? 1 : 0;
        }
    });
    Workers putters(2, [&] {
        for (int i = 1; i <= rounds; ++i) {
            EXPECT_TRUE(queue.put(i, 0));
            if (i % 64 == 0) queue.wake();
            if (i % 1000 == 0) std::this_thread::sleep_for(1ms);  // lets waits time out
        }
    });
    getters.join();
    EXPECT_EQ(static_cast<long long>(rounds) * (rounds + 1), sum);
}

TEST(QBLSentinelQueueTest, CancelledWaitTakesNoItem) {
    if (kSanitizer) GTEST_SKIP() << "the sanitizer keeps the stack of a cancelled thread poisoned";
    QBLSentinelQueue<int> queue;
    int item = 5, got = 0;
    Cancellable thread([&] { static_cast<void>(queue.get(got, QBLWaitForever)); });
    thread.cancel();
    EXPECT_TRUE(thread.join());
    ASSERT_TRUE(queue.put(item, 0));
    ASSERT_TRUE(queue.get(got, 0));
    EXPECT_EQ(5, got);
}
