#include "TavThread/TavStateTrap.h"

#include <malloc.h>
#include <sched.h>

#include <string>

#include "tests/TavThread/TavSupport.hpp"

namespace {

struct Log {
    std::string text;  // written by one thread at a time
    static void append(void* self, TavThread*, int state) {
        static_cast<Log*>(self)->text += std::to_string(state);
    }
};

/// A thread that waits for its continuation.
struct Suspended : Started {
    explicit Suspended(Body body = [] { return nullptr; })
        : Started(std::move(body), TavThreadAttrSuspended) {
        EXPECT_TRUE(eventually([this] { return isSo(); }));
    }
    bool isSo() const { return tavXThreadState(*this) == TavThreadStateSuspended; }
};

}  // namespace

TEST(TavStateTrapTest, CallbacksRunForEveryChangeNewestFirst) {
    Layer layer;
    Log mine, theirs;  // mine: the change to Running by this thread; theirs: all other changes
    Suspended thread;
    for (int state = 0; state < 5; ++state)
        EXPECT_EQ(TAVTHREAD_OK,
                  tavXThreadStateCallback(thread, state, &Log::append,
                                          state == TavThreadStateRunning ? &mine : &theirs));
    const TavStateRoutine first = [](void* arg, TavThread*, int) {
        static_cast<Log*>(arg)->text += "first ";
        throw 1;
    };
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateCallback(thread, 3, first, &theirs));
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateCallback(thread, 3, nullptr, nullptr));
    for (const int state : {5, -1})
        EXPECT_EQ(TAVTHREAD_INVALID, tavXThreadStateCallback(thread, state, first, &mine));
    EXPECT_EQ(TAVTHREAD_INVALID, tavXThreadStateCallback(nullptr, 0, first, &mine));
    tavXThreadCancel(thread);
    EXPECT_EQ("1", mine.text);
    thread.join();
    EXPECT_EQ("first 30", theirs.text);
}

TEST(TavStateTrapTest, ThreadResumesAfterTheCallbacksOfItsContinuation) {
    Layer layer;
    const TavStateRoutine slowly = [](void* arg, TavThread* thread, int state) {
        for (int i = 0; i < 100; ++i) sched_yield();
        Log::append(arg, thread, state);
    };
    for (int i = 0; i < 100; ++i) {
        Log log;
        Suspended thread([&]() -> void* { return log.text += 'r', nullptr; });
        tavXThreadStateCallback(thread, TavThreadStateRunning, slowly, &log);
        tavXThreadStateCallback(thread, TavThreadStateInitial, &Log::append, &log);
        tavXThreadContinue(thread);
        thread.join();
        ASSERT_EQ("1r0", log.text);
    }
}

TEST(TavStateTrapTest, RunningCallbacksFollowTheSuspendedCallbacks) {
    Layer layer;
    for (int i = 0; i < 50; ++i) {
        struct {
            Gate armed, suspended;
            Log log;
        } round;
        const TavStateRoutine slowly = [](void* arg, TavThread* thread, int state) {
            auto& of = *static_cast<decltype(round)*>(arg);
            of.suspended.open();
            for (int turns = 0; turns < 100; ++turns) sched_yield();
            Log::append(&of.log, thread, state);
        };
        Started thread([&]() -> void* {
            round.armed.wait();
            return tavXThreadState(nullptr), nullptr;
        });
        tavXThreadStateCallback(thread, TavThreadStateSuspended, slowly, &round);
        tavXThreadStateCallback(thread, TavThreadStateRunning, &Log::append, &round.log);
        tavXThreadSuspend(thread);
        round.armed.open();
        EXPECT_TRUE(round.suspended.wait());
        tavXThreadContinue(thread);
        ASSERT_EQ("21", round.log.text);
        thread.join();
    }
}

TEST(TavStateTrapTest, CallbackMaySuspendTheContinuedThread) {
    Layer layer;
    std::atomic<int> steps{0};
    Suspended thread(
        [&]() -> void* { return ++steps, tavXThreadState(nullptr), ++steps, nullptr; });
    int times = 3;
    const TavStateRoutine again = [](void* left, TavThread* of, int) {
        if (--*static_cast<int*>(left) != 0) tavXThreadSuspend(of);
        if (*static_cast<int*>(left) == 1) tavXThreadContinue(of);
    };
    tavXThreadStateCallback(thread, TavThreadStateRunning, again, &times);
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadContinue(thread));
    ASSERT_TRUE(eventually([&] { return steps == 1 && thread.isSo(); }))
        << "it suspends at the next checkpoint";
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadContinue(thread)) << "the callback suspends and continues it";
    thread.join();
    EXPECT_EQ(2, steps);
}

TEST(TavStateTrapTest, TrapsAreListedAndDisarmed) {
    Layer layer;
    Log log;
    TavStateTrap* traps[3] = {};
    TavStateTrap* next = nullptr;
    for (TavStateTrap*& trap : traps)
        ASSERT_EQ(TAVTHREAD_OK,
                  tavXThreadStateTrapCreate(&trap, TavThreadStateCanceling, TavStateTrapAttrEnd));
    EXPECT_EQ(TAVTHREAD_INVALID, tavXThreadStateTrapCreate(&next, 5, TavStateTrapAttrEnd));
    EXPECT_EQ(TAVTHREAD_BADATTR, tavXThreadStateTrapCreate(&next, 5, 4, TavStateTrapAttrEnd));
    {
        Suspended thread;
        for (TavStateTrap* trap : traps)
            EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapSet(trap, thread, &Log::append, &log));
        EXPECT_EQ(TAVTHREAD_OK,
                  tavXThreadStateCallback(thread, TavThreadStateCanceling, &Log::append, &log));
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapNext(traps[2], &next));
        EXPECT_EQ(traps[1], next);
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapDestroy(traps[1]));
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapNext(traps[2], &next));
        EXPECT_EQ(traps[0], next) << "the walk skips the destroyed trap";
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapNext(traps[0], &next));
        EXPECT_EQ(nullptr, next);
        tavXThreadCancel(thread);
    }
    EXPECT_EQ("333", log.text) << "two traps and a callback run";
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapNext(traps[2], &next)) << "its thread is destroyed";
    EXPECT_EQ(nullptr, next);
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapDestroy(traps[2]));
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapDestroy(traps[0]));
}

TEST(TavStateTrapTest, DestroyedTrapsFreeTheirMemory) {
    Layer layer;
    std::atomic<int> calls{0};
    const TavStateRoutine destroyIt = [](void* arg, TavThread*, int) {
        tavXThreadStateTrapDestroy(*static_cast<TavStateTrap**>(arg));
    };
    const TavStateRoutine count = [](void* arg, TavThread*, int) {
        ++*static_cast<std::atomic<int>*>(arg);
    };
    TavStateTrap *trap = nullptr, *inside = nullptr;
    const auto arm = [](TavStateTrap*& made, TavThread* of, TavStateRoutine routine, void* arg) {
        return tavXThreadStateTrapCreate(&made, TavThreadStateCanceling, TavStateTrapAttrEnd) +
               tavXThreadStateTrapSet(made, of, routine, arg);
    };
    Suspended thread;
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 10000; ++i) {
        ASSERT_EQ(TAVTHREAD_OK, arm(trap, thread, count, &calls));
        ASSERT_EQ(TAVTHREAD_OK, tavXThreadStateTrapSet(trap, thread, count, &calls)) << "set again";
        ASSERT_EQ(TAVTHREAD_OK, tavXThreadStateTrapDestroy(trap));
    }
    EXPECT_TRUE(kSanitizer || mallinfo2().uordblks < before + 10000);
    tavXThreadStateCallback(thread, TavThreadStateCanceling, count, &calls);
    EXPECT_EQ(TAVTHREAD_OK, arm(inside, thread, destroyIt, &inside));
    tavXThreadCancel(thread);
    thread.join();
    EXPECT_EQ(1, calls) << "the walk continues after a trap that destroys itself";
}
