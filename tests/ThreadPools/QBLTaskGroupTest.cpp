#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"

#include <cerrno>
#include <functional>
#include <memory>
#include <stdexcept>

#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLStoppableGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/Cancellable.hpp"
#include "tests/support/Tasks.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

const char kOwnPiece[] = "QBLTaskGroup::wait: called by a piece of the group";

struct QBLTaskGroupTest : ::testing::Test {
    void SetUp() override { ASSERT_EQ(0, qblCoreInitialize()); }
    void TearDown() override { EXPECT_EQ(0, qblCoreTerminate()); }
};

}  // namespace

TEST_F(QBLTaskGroupTest, WaitsForAllPieces) {
    QBLThreadPoolQueued pool(2, 1);
    std::atomic<int> runs{0};
    Job runnable([&runs] { ++runs; });
    const auto held = std::make_shared<int>(0);
    for (int round = 1; round <= 200; ++round) {
        QBLTaskGroup group(pool);
        group.run(runnable);
        for (int i = 0; i < 4; ++i) {
            group.run([&group, &runs, held] {
                ++runs;
                group.run([&runs] { ++runs; });
            });
        }
        if (round % 2 == 0) {
            group.wait();
            EXPECT_EQ(9 * round, runs);
            EXPECT_EQ(1, held.use_count()) << "pieces are destroyed after they have run";
        }
    }
    EXPECT_EQ(1800, runs);
}

TEST_F(QBLTaskGroupTest, ThrowsTheFirstErrorWithBothLocations) {
    DirectPool pool(true);
    QBLTaskGroup group(pool);
    group.run([] { QBL_THROW(QBLIllegalStateError(5, "first")); });
    group.run([] { throw std::runtime_error("second"); });
    int line = 0;
    try {
        line = __LINE__ + 1;
        group.wait();
        ADD_FAILURE() << "nothing thrown";
    } catch (QBLIllegalStateError& error) {
        EXPECT_STREQ("first", error.getMessage());
        EXPECT_EQ("QBLIllegalStateError: QBL_THROW: \nQBLIllegalStateError: QBL_THROW: \n",
                  traceOf(error));
        EXPECT_EQ(0U, std::string(*error.getBackTrace().begin())
                          .find("tests/ThreadPools/QBLTaskGroupTest.cpp(" + std::to_string(line)));
    }
    group.wait();
    group.run([] { throw std::runtime_error("foreign"); });
    QBL_EXPECT_THROW(group.wait(), QBLStdExceptionError, "foreign");
    group.run([] { throw 5; });
    QBL_EXPECT_THROW(group.wait(), QBLUnknownError, nullptr);
}

TEST_F(QBLTaskGroupTest, RunsRefusedPiecesItself) {
    DirectPool pool(true);
    QBLTaskGroup group(pool);
    std::thread::id where;
    group.run([&where] { where = std::this_thread::get_id(); });
    EXPECT_EQ(std::this_thread::get_id(), where);
    pool.stopped = true;
    QBL_EXPECT_THROW(group.run([&where] { where = std::thread::id(); }), QBLIllegalStateError,
                     "stopped");
    group.wait();
    EXPECT_EQ(std::this_thread::get_id(), where) << "the refused piece did not run";
}

TEST_F(QBLTaskGroupTest, NestedPiecesNeedNoStack) {
    QBLThreadPoolFixed busy(1);
    DirectPool none(true);
    for (QBLThreadExecuteRunnable* pool :
         std::initializer_list<QBLThreadExecuteRunnable*>{&busy, &none}) {
        QBLTaskGroup group(*pool);
        std::atomic<int> left{200000};
        std::function<void()> step = [&] {
            if (--left > 0) group.run(step);
        };
        group.run(step);
        group.run([&] { QBL_EXPECT_THROW(group.wait(), QBLIllegalStateError, kOwnPiece); });
        group.wait();
        EXPECT_EQ(0, left);
    }
}

TEST_F(QBLTaskGroupTest, DestructorCompletesEvenIfThreadsEnd) {
    QBLThreadPoolFixed pool(1);
    Gate begun, release;
    std::atomic<int> ran{0};
    Cancellable thread([&] {
        QBLStoppableGroup group(pool);
        group.run([&] {
            release.wait();
            // The pool refuses this piece; the group's destructor runs it.
            group.run([&] {
                ran += group.request_stop() ? 1 : 5;
                pthread_exit(nullptr);
            });
            if (eventually([&] { return ran == 1; })) ++ran;
        });
        fault::failCall(fault::kThreadCreate, 0, EAGAIN);
        fault::failCall(fault::kThreadBegin, 0, ENOMEM);
        begun.open();
    });
    EXPECT_TRUE(begun.wait());
    thread.cancel();
    release.open();
    thread.join();
    EXPECT_EQ(2, ran);
}
