#include "TavThread/TavSemaphore.h"

#include <climits>
#include <random>

#include "tests/TavThread/TavSupport.hpp"

namespace {

struct TavSemaphoreTest : ::testing::Test {
    TavSemaphoreTest() { EXPECT_EQ(TAVTHREAD_OK, tavXSemaphoreCreate(&s, 0, TavSemaphoreAttrEnd)); }
    ~TavSemaphoreTest() override { EXPECT_EQ(TAVTHREAD_OK, tavXSemaphoreDestroy(s)); }

    int left() {
        int n = 0;
        while (tavXSemaphoreTryWait(s) == TAVTHREAD_OK) ++n;
        return n;
    }

    TavSemaphore* s = nullptr;
};

}  // namespace

TEST_F(TavSemaphoreTest, CountsPosts) {
    EXPECT_EQ(TAVTHREAD_BUSY, tavXSemaphoreTryWait(s));
    EXPECT_EQ(TAVTHREAD_OK, tavXSemaphorePostN(s, 0));
    EXPECT_EQ(TAVTHREAD_OK, tavXSemaphorePostN(s, INT_MIN));
    EXPECT_EQ(0, left());
    EXPECT_EQ(TAVTHREAD_OK, tavXSemaphorePostN(s, 3));
    EXPECT_EQ(TAVTHREAD_OK, tavXSemaphorePost(s));
    EXPECT_EQ(4, left());
    EXPECT_EQ(TAVTHREAD_INVALID, tavXSemaphorePostN(nullptr, 0));
}

TEST(TavSemaphoreLimitTest, RejectsACountAboveTheSystemLimit) {
    TavSemaphore* s = reinterpret_cast<TavSemaphore*>(&s);
    EXPECT_EQ(TAVTHREAD_ERROR, tavXSemaphoreCreate(&s, UINT_MAX, TavSemaphoreAttrEnd));
    EXPECT_EQ(nullptr, s);
    ASSERT_EQ(TAVTHREAD_OK, tavXSemaphoreCreate(&s, INT_MAX - 1, TavSemaphoreAttrEnd));
    EXPECT_EQ(TAVTHREAD_ERROR, tavXSemaphorePostN(s, 3)) << "stops at the first failure";
    EXPECT_EQ(TAVTHREAD_OK, tavXSemaphoreDestroy(s));
}

TEST_F(TavSemaphoreTest, TimedWaitsLastTheRequestedTime) {
    const struct {
        int (*wait)(TavSemaphore*, unsigned);
        unsigned ms;
        double least;
    } table[] = {{&tavXSemaphoreTimedWait, 0, 0},     {&tavXSemaphoreTimedWait, 99, 99},
                 {&tavXSemaphoreTimedWait, 199, 398}, {&tavXSemaphoreBoundedWait, 0, 0},
                 {&tavXSemaphoreBoundedWait, 1, 1},   {&tavXSemaphoreBoundedWait, 30, 30}};
    for (const auto& row : table) {
        Watch watch;
        EXPECT_EQ(TAVTHREAD_TIMEOUT, row.wait(s, row.ms));
        EXPECT_GE(watch.ms(), row.least) << row.ms;
        tavXSemaphorePost(s);
        EXPECT_EQ(TAVTHREAD_OK, row.wait(s, row.ms)) << "the count is 1";
    }
}

TEST_F(TavSemaphoreTest, UnlimitedWaitsEndWithAPost) {
    for (auto* wait : {&tavXSemaphoreTimedWait, &tavXSemaphoreBoundedWait}) {
        std::atomic<bool> woken{false};
        Workers waiter(1, [&] {
            EXPECT_EQ(TAVTHREAD_OK, wait(s, TAVTHREAD_INFINITE));
            woken = true;
        });
        EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXSemaphoreBoundedWait(s, 5));
        EXPECT_FALSE(woken);
        tavXSemaphorePost(s);
        waiter.join();
        EXPECT_EQ(0, left());
    }
}

TEST_F(TavSemaphoreTest, BoundedWaitLosesNoPostAndSynchronizesMemory) {
    constexpr int kPosts = 3000;
    int slots[kPosts] = {};
    std::atomic<int> taken{0};
    std::atomic<bool> over{false};
    Workers waiters(3, [&] {
        while (!over)
            // A short bound, so that many waits end at the moment when a post arrives.
            EXPECT_TRUE(tavXSemaphoreBoundedWait(s, 1) != TAVTHREAD_OK || slots[taken++] == 1);
    });
    std::minstd_rand random(7);
    for (int& slot : slots) {
        slot = 1;
        tavXSemaphorePost(s);
        if (random() % 64 == 0 && tavXSemaphoreBoundedWait(s, 0) == TAVTHREAD_OK) ++taken;
    }
    EXPECT_TRUE(eventually([&] { return taken == kPosts; })) << taken;
    over = true;
    waiters.join();
    EXPECT_EQ(0, left());
}

TEST_F(TavSemaphoreTest, BoundedWaitHandsOverBackAndForth) {
    TavSemaphore* back = nullptr;
    ASSERT_EQ(TAVTHREAD_OK, tavXSemaphoreCreate(&back, 0, TavSemaphoreAttrEnd));
    int ball = 0;
    const auto play = [&](TavSemaphore* from, TavSemaphore* to) {
        for (int i = 0; i < 2000; ++i) {
            EXPECT_EQ(TAVTHREAD_OK, tavXSemaphoreBoundedWait(from, kTestLimitMs));
            ++ball;
            tavXSemaphorePost(to);
        }
    };
    tavXSemaphorePost(s);
    Workers other(1, [&] { play(s, back); });
    play(back, s);
    other.join();
    EXPECT_EQ(4000, ball);
    tavXSemaphoreDestroy(back);
}
