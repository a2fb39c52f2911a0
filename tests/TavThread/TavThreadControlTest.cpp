#include "tests/TavThread/TavSupport.hpp"

namespace {

/// The body of a thread that passes checkpoints until it is cancelled, and counts them.
struct Runner {
    std::atomic<int> steps{0};
    Body body = [this]() -> void* {
        while (tavXThreadState(nullptr) != TavThreadStateCanceling) ++steps;
        return nullptr;
    };
    /// Returns true if the thread passes more checkpoints.
    bool moves() {
        const int from = steps;
        return eventually([&] { return steps > from + 1; });
    }
};

bool reaches(TavThread* thread, int state) {
    return eventually([=] { return tavXThreadState(thread) == state; });
}

}  // namespace

TEST(TavThreadControlTest, SuspendsAtACheckpointUntilContinued) {
    Layer layer;
    Runner runner;
    Started thread(runner.body, TavThreadAttrSuspended);
    EXPECT_TRUE(reaches(thread, TavThreadStateSuspended));
    EXPECT_EQ(0, runner.steps) << "its routine has not started";
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadContinue(thread));
        EXPECT_EQ(TavThreadStateRunning, tavXThreadState(thread)) << "changes immediately";
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadContinue(thread)) << "has no effect, now or later";
        EXPECT_TRUE(runner.moves());
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadSuspend(thread));
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadSuspend(thread)) << "does not block";
        EXPECT_TRUE(reaches(thread, TavThreadStateSuspended)) << round;
        const int stopped = runner.steps;
        sched_yield();
        EXPECT_EQ(stopped, runner.steps);
    }
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadCancel(thread)) << "wakes the thread";
    EXPECT_EQ(TAVTHREAD_OK, thread.join());
    EXPECT_EQ(TavThreadExitCanceled, tavXThreadAutopsy(thread));
}

TEST(TavThreadControlTest, NeverRunsIfCancelledBeforeItsRoutine) {
    Layer layer;
    for (int i = 0; i < 200; ++i) {
        // At this moment, the thread may be anywhere between its creation and its wait.
        int flag = i % 3 == 0;
        std::atomic<bool> ran{false};
        Started thread([&]() -> void* { return ran = true, nullptr; }, TavThreadAttrSuspended,
                       TavThreadAttrCancelFlag, &flag);
        if (flag == 0) tavXThreadCancel(thread);
        EXPECT_EQ(TAVTHREAD_OK, thread.join());
        EXPECT_FALSE(ran);
        EXPECT_EQ(TavThreadExitCanceled, tavXThreadAutopsy(thread));
    }
}

TEST(TavThreadControlTest, SurvivesSuspendAndContinueFromSeveralThreads) {
    Layer layer;
    Runner runner;
    Started thread(runner.body);
    std::atomic<int> seed{0};
    for (int round = 0; round < 40; ++round) {
        Workers(3, [&] {
            unsigned mine = static_cast<unsigned>(++seed);
            for (int i = 0; i < 100; ++i) {
                mine = mine * 1664525U + 1013904223U;
                EXPECT_EQ(TAVTHREAD_OK, (mine >> 31) != 0 ? tavXThreadSuspend(thread)
                                                          : tavXThreadContinue(thread));
            }
        }).join();
        // Whatever the last call was, tavXThreadContinue resumes the thread, and tavXThreadSuspend
        // stops it.
        tavXThreadContinue(thread);
        EXPECT_TRUE(runner.moves());
        tavXThreadSuspend(thread);
        EXPECT_TRUE(reaches(thread, TavThreadStateSuspended)) << round;
        const int before = runner.steps;
        tavXThreadContinue(thread);
        tavXThreadSuspend(thread);
        EXPECT_TRUE(reaches(thread, TavThreadStateSuspended))
            << "it suspends at its next checkpoint";
        EXPECT_LT(before, runner.steps) << "it passed a checkpoint in between";
        const int stopped = runner.steps;
        sched_yield();
        EXPECT_EQ(stopped, runner.steps) << round;
    }
    tavXThreadCancel(thread);
    EXPECT_EQ(TAVTHREAD_OK, thread.join());
}

TEST(TavThreadControlTest, StaysFinishedDespiteSuspendAndContinue) {
    Layer layer;
    for (int i = 0; i < 200; ++i) {
        std::atomic<int> pushes{0};
        Started thread([&]() -> void* {
            while (pushes < i % 7) {
            }
            return nullptr;
        });
        Workers(2, [&] {
            for (int k = 0; k < 20; ++k, ++pushes) {
                tavXThreadSuspend(thread);
                tavXThreadContinue(thread);
                tavXThreadAdjustPriority(thread, 1);
                tavXThreadAlive(thread);
            }
        }).join();
        EXPECT_EQ(TAVTHREAD_OK, thread.join());
        EXPECT_EQ(TavThreadStateInitial, tavXThreadState(thread));
        EXPECT_EQ(0, tavXThreadAlive(thread));
    }
}
