#include "QBLCore/ThreadPools/QBLSubmit.hpp"

#include <pthread.h>

#include <functional>
#include <memory>

#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLExecute.hpp"
#include "QBLCore/ThreadPools/QBLStoppableGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolVariable.hpp"
#include "QBLCore/Threads/QBLCallableThread.hpp"
#include "tests/support/Tasks.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

struct QBLSubmitTest : ::testing::Test {
    void SetUp() override { ASSERT_EQ(0, qblCoreInitialize()); }
    void TearDown() override {
        EXPECT_EQ(1, held.use_count()) << "a callable was not destroyed";
        EXPECT_EQ(0, qblCoreTerminate());
    }

    const std::shared_ptr<int> held = std::make_shared<int>(0);
};

}  // namespace

TEST_F(QBLSubmitTest, ReturnsResultsOfAllKindsFromAllPools) {
    QBLThreadPoolFixed fixed(1);
    QBLThreadPoolQueued queued(2, 1), dropping(1, 0, 0);
    QBLThreadPoolVariable variable(1, 0, 1);
    for (QBLThreadExecuteRunnable* pool :
         std::initializer_list<QBLThreadExecuteRunnable*>{&fixed, &queued, &dropping, &variable}) {
        auto sum = [one = std::make_unique<int>(1), held = held](std::unique_ptr<int> two) {
            return std::make_unique<int>(*one + *two);
        };
        auto result = qblSubmitFor(*pool, QBLWaitForever, std::move(sum), std::make_unique<int>(2));
        EXPECT_EQ(3, *result.get());
        EXPECT_EQ(1, held.use_count()) << "the callable is destroyed before the future is ready";
        int target = 0;
        const auto same = [](int& i) -> int& { return i; };
        EXPECT_EQ(&target, &qblSubmitFor(*pool, QBLWaitForever, same, std::ref(target)).get());
        qblSubmitFor(*pool, std::chrono::hours(1), [&target, held = held] { target = 5; }).get();
        EXPECT_EQ(5, target);
        Gate ran;
        EXPECT_TRUE(qblExecute(
            *pool,
            [&ran, p = std::make_unique<int>()] {
                ran.open();
                throw 5;
            },
            std::chrono::hours(1)));
        EXPECT_TRUE(ran.wait());
    }
}

TEST_F(QBLSubmitTest, FutureHasTheErrorOfWhateverWentWrong) {
    DirectPool direct;
    const auto submit = [&direct, this](auto body) {
        return qblSubmit(direct, [body, held = held] { body(); });
    };
    auto own = submit([] { QBL_THROW(QBLIllegalStateError(4, "own")); });
    QBL_EXPECT_THROW(own.get(), QBLIllegalStateError, "own", 4);
    EXPECT_THROW(submit([] { throw 5; }).get(), int);
    direct.refusing = true;
    const auto nothing = [] { ADD_FAILURE() << "a refused task ran"; };
    QBL_EXPECT_THROW(submit(nothing).get(), QBLThreadResourceError,
                     "qblSubmit: the pool did not accept the task");
    EXPECT_FALSE(qblExecute(direct, [held = held] {}));
    direct.stopped = true;
    QBL_EXPECT_THROW(submit(nothing).get(), QBLIllegalStateError, "stopped");
    QBL_EXPECT_THROW(qblExecute(direct, [held = held] {}), QBLIllegalStateError, "stopped");
    std::future<void> ended;
    {
        QBLThreadPoolFixed pool(1);
        ended = qblSubmit(pool, [held = held] { pthread_exit(nullptr); });
    }
    QBL_EXPECT_THROW(ended.get(), QBLThreadResourceError, "qblSubmit: the task ended its thread");
}

TEST_F(QBLSubmitTest, FuturesOfDroppedTasksBecomeReady) {
    auto pool = std::make_unique<QBLThreadPoolQueued>(1, 0, 0);
    QBLThreadPoolQueued other(1, 0, 0);
    Gate begun, release;
    auto running = qblSubmit(*pool, [&begun, &release] {
        begun.open();
        return release.wait();
    });
    EXPECT_TRUE(begun.wait());
    std::future<void> dropped[3];
    for (auto& future : dropped) future = qblSubmit(*pool, [held = held] {});
    EXPECT_TRUE(qblExecute(*pool, [held = held] {}));
    auto kept = qblSubmit(other, [&release] { return release.wait(); });
    pool->setStopWork(1);
    release.open();
    pool.reset();
    EXPECT_TRUE(running.get());
    for (auto& future : dropped)
        QBL_EXPECT_THROW(future.get(), QBLIllegalStateError,
                         "qblSubmit: the pool was destroyed and dropped the task");
    EXPECT_TRUE(kept.get()) << "a task of another pool was dropped";
}

TEST_F(QBLSubmitTest, GroupsStopAndThreadsRunCallables) {
    QBLThreadPoolQueued pool(2, 0);
    QBLStoppableGroup group(pool);
    std::atomic<int> stopped{0};
    for (int i = 0; i < 2; ++i)
        group.run([&](const QBLStopToken& token) {
            if (eventually([&token] { return token.stop_requested(); })) ++stopped;
        });
    group.run([&stopped] { ++stopped; });
    EXPECT_TRUE(group.request_stop());
    EXPECT_FALSE(group.request_stop());
    group.wait();
    EXPECT_EQ(3, stopped);
    EXPECT_FALSE(QBLStopToken().stop_requested());
    QBLStopSource source;
    EXPECT_TRUE(QBLStopSource(std::move(source)).request_stop());
    // NOLINTNEXTLINE(bugprone-use-after-move): tests the state after the move
    EXPECT_FALSE(source.request_stop() || source.stop_requested() ||
                 source.get_token().stop_possible());
    {
        QBLCallableThread thread([&stopped, one = std::make_unique<int>(1)] { stopped += *one; });
        for (int i = 0; i < 2; ++i) {
            thread.start();
            thread.join();
        }
        thread.start();
    }
    EXPECT_EQ(6, stopped);
}
