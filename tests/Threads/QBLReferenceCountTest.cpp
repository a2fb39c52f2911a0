#include "QBLCore/Threads/QBLReferenceCount.hpp"

#include <gtest/gtest.h>

#include "tests/support/Workers.hpp"

namespace {

std::atomic<int> g_cleanups{0};

template <class Base>
struct Counted : Base {
    explicit Counted(int initial) : Base(initial) {}
    void cleanup() override {
        ++g_cleanups;
        delete this;
    }
};

}  // namespace

TEST(QBLReferenceCountTest, CleansUpOnceAfterTheLastReleaseOnManyThreads) {
    g_cleanups = 0;
    auto* object = new Counted<QBLReferenceCount>(8);
    Workers(8, [object] {
        for (int i = 0; i < 500; ++i) {
            object->addReference();
            object->removeReference();
        }
        object->removeReference();
    }).join();
    EXPECT_EQ(1, g_cleanups);
}

TEST(QBLReferenceCountTest, SurvivesItsOwnCleanup) {
    g_cleanups = 0;
    auto* object = new Counted<QBLThreadUnsafeReferenceCount>(0);
    EXPECT_EQ(1, object->addReference());
    EXPECT_EQ(2, object->addReference());
    EXPECT_EQ(1, object->removeReference());
    EXPECT_EQ(0, object->removeReference());
    EXPECT_EQ(1, g_cleanups);
    QBLReferenceCount onTheStack(1);
    EXPECT_EQ(0, onTheStack.removeReference());
    EXPECT_EQ(-1, onTheStack.removeReference()) << "only reaching 0 cleans up";
}
