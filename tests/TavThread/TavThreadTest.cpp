#include "TavThread/TavThread.h"

#include <cstdio>
#include <cstring>
#include <optional>
#include <stdexcept>

#include "TavThread/TavThreadKey.h"
#include "TavThread/TavTrace.h"
#include "tests/TavThread/TavSupport.hpp"

TEST(TavProcessTest, CountsStartsAndStops) {
    EXPECT_EQ(TAVTHREAD_NOTINIT, tavThreadProcessTerminate());
    EXPECT_EQ(TAVTHREAD_NOTINIT, tavXThreadInitialize());
    EXPECT_EQ(nullptr, tavXThreadSelf());
    EXPECT_EQ(TavThreadStateRunning, tavXThreadState(nullptr));
    TavThread* thread = reinterpret_cast<TavThread*>(&thread);
    EXPECT_EQ(TAVTHREAD_NOTINIT, tavXThreadCreate(&runBody, nullptr, &thread, TavThreadAttrEnd));
    EXPECT_EQ(nullptr, thread);
    for (int cycle = 0; cycle < 3; ++cycle) {
        Layer outer;
        {
            Layer inner;
            EXPECT_EQ(1U, tavXThreadId(nullptr)) << "identifiers restart at 1 after each start";
        }
        EXPECT_NE(nullptr, tavXThreadSelf()) << "the outer start is still active";
    }
    EXPECT_EQ(nullptr, tavXThreadSelf());
    EXPECT_EQ(TAVTHREAD_NOTINIT, tavThreadProcessTerminate());
}

TEST(TavProcessTest, AdoptsAThreadOncePerRunOfTheLayer) {
    Gate first, again;
    std::optional<Workers> stays;
    {
        Layer layer;
        stays.emplace(1, [&] {
            TavThread* self = tavXThreadSelf();
            EXPECT_EQ(self, tavXThreadSelf());
            EXPECT_EQ(TavThreadExitAlive, tavXThreadAutopsy(nullptr));
            EXPECT_EQ(TAVTHREAD_DEADLOCK, tavXThreadJoin(self, nullptr));
            first.open();
            again.wait();
            EXPECT_EQ(1U, tavXThreadId(nullptr)) << "this run of the layer has a new record";
            EXPECT_EQ(TAVTHREAD_OK, tavXThreadDestroy(tavXThreadSelf()));
            EXPECT_EQ(2U, tavXThreadId(nullptr));
            EXPECT_EQ(TAVTHREAD_OK, tavXThreadTerminate());
        });
        EXPECT_TRUE(first.wait());
    }
    Layer layer;
    again.open();
    stays->join();
}

TEST(TavThreadTest, ChecksItsArgumentsInOrder) {
    Layer layer;
    Body body = [] { return nullptr; };
    EXPECT_EQ(TAVTHREAD_BADATTR, tavXThreadCreate(nullptr, nullptr, nullptr, 10, TavThreadAttrEnd));
    EXPECT_EQ(TAVTHREAD_INVALID, tavXThreadCreate(&runBody, &body, nullptr, TavThreadAttrEnd));
    TavThread* thread = reinterpret_cast<TavThread*>(&thread);
    EXPECT_EQ(TAVTHREAD_INVALID, tavXThreadCreate(nullptr, nullptr, &thread, TavThreadAttrEnd));
    EXPECT_EQ(nullptr, thread);
    for (const auto operation :
         {&tavXThreadDestroy, &tavXThreadSuspend, &tavXThreadContinue, &tavXThreadCancel})
        EXPECT_EQ(TAVTHREAD_INVALID, operation(nullptr));
}

TEST(TavThreadTest, ReportsHowAThreadEnded) {
    Layer layer;
    int result = 0;
    const struct {
        Body body;
        void* value;
        int state, reason;
    } table[] = {
        {[&] { return &result; }, &result, TavThreadStateInitial, TavThreadExitNormal},
        {[&]() -> void* { pthread_exit(&result); }, &result, TavThreadStateInitial,
         TavThreadExitNormal},
        {[&]() -> void* { throw std::runtime_error("x"); }, nullptr, TavThreadStateException,
         TavThreadExitException},
        {[&] {
             tavXThreadCancel(tavXThreadSelf());
             EXPECT_EQ(TavThreadStateCanceling, tavXThreadState(nullptr));
             return &result;
         },
         &result, TavThreadStateInitial, TavThreadExitCanceled},
        {[&] {
             tavXThreadCancel(tavXThreadSelf());
             tavXThreadState(nullptr);
             EXPECT_EQ(TAVTHREAD_OK, tavXThreadCancelReset());
             EXPECT_EQ(TavThreadStateRunning, tavXThreadState(nullptr));
             return &result;
         },
         &result, TavThreadStateInitial, TavThreadExitNormal},
    };
    for (const auto& row : table) {
        Gate gate;
        Started thread([&] {
            gate.wait();
            return row.body();
        });
        EXPECT_EQ(1, tavXThreadAlive(thread));
        EXPECT_EQ(TavThreadExitAlive, tavXThreadAutopsy(thread));
        gate.open();
        EXPECT_TRUE(eventually([&] { return tavXThreadAlive(thread) == 0; }))
            << "it ends without a join";
        EXPECT_EQ(TAVTHREAD_AGAIN, tavXThreadAdjustPriority(thread, 1)) << "the thread has ended";
        void* value = &gate;
        EXPECT_EQ(TAVTHREAD_OK, thread.join(&value));
        EXPECT_EQ(row.value, value);
        EXPECT_EQ(row.value, tavXThreadExitStatus(thread));
        EXPECT_EQ(row.state, tavXThreadState(thread));
        EXPECT_EQ(row.reason, tavXThreadAutopsy(thread));
        EXPECT_EQ(TAVTHREAD_ERROR, thread.join()) << "a second join fails";
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadContinue(thread));
        EXPECT_EQ(row.state, tavXThreadState(thread)) << "continue does not change an ended thread";
    }
}

TEST(TavThreadTest, RecordExistsUntilThreadAndHandleReleaseIt) {
    Layer layer;
    Gate gate;
    std::atomic<int> ended{0};
    Body body = [&]() -> void* {
        gate.wait();
        EXPECT_NE(0U, tavXThreadId(nullptr));
        EXPECT_EQ(TavThreadStateRunning, tavXThreadState(nullptr));
        ++ended;
        return nullptr;
    };
    TavThread* thread = nullptr;
    ASSERT_EQ(TAVTHREAD_OK, tavXThreadCreate(&runBody, &body, &thread, TavThreadAttrEnd));
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadDestroy(thread)) << "the thread still runs";
    ASSERT_EQ(TAVTHREAD_OK,
              tavXThreadCreate(&runBody, &body, nullptr, TavThreadAttrDetached, TavThreadAttrEnd));
    ASSERT_EQ(TAVTHREAD_OK,
              tavXThreadCreate(&runBody, &body, &thread, TavThreadAttrDetached, TavThreadAttrEnd));
    EXPECT_EQ(TAVTHREAD_ERROR, tavXThreadJoin(thread, nullptr)) << "the thread is detached";
    gate.open();
    EXPECT_TRUE(eventually([&] { return ended == 3 && tavXThreadAlive(thread) == 0; }));
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadDestroy(thread)) << "the thread has ended";
}

TEST(TavThreadTest, RefusesToJoinItselfOrFreeAnothersRecord) {
    Layer layer;
    TavThread* const mine = tavXThreadSelf();
    Started thread([&] {
        EXPECT_EQ(TAVTHREAD_DEADLOCK, tavXThreadJoin(nullptr, nullptr));
        EXPECT_EQ(TAVTHREAD_DEADLOCK, tavXThreadJoin(tavXThreadSelf(), nullptr));
        EXPECT_EQ(TAVTHREAD_ERROR, tavXThreadDestroy(mine));
        return nullptr;
    });
    EXPECT_EQ(TAVTHREAD_OK, thread.join());
    EXPECT_EQ(mine, tavXThreadSelf());
}

TEST(TavThreadTest, StackSizeGrowsButNeverShrinks) {
    Layer layer;
    size_t usual = 0;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_getstacksize(&attributes, &usual);
    pthread_attr_destroy(&attributes);
    const auto larger = static_cast<unsigned>(usual + 0x100000);
    for (const unsigned request : {0U, 1U, 20000U, larger}) {
        size_t got = 0;
        const Body body = [&]() -> void* {
            pthread_getattr_np(pthread_self(), &attributes);
            pthread_attr_getstacksize(&attributes, &got);
            pthread_attr_destroy(&attributes);
            return nullptr;
        };
        Started(body, TavThreadAttrStackSize, request).join();
        // The tolerance is for the part of the stack that sanitizers and the C library use.
        EXPECT_GE(got + 0x20000, request == larger ? larger : usual) << request;
    }
}

TEST(TavThreadTest, DescendantsInheritTraceObjectAndCancelFlag) {
    Layer layer;
    int flag = 1, own = 0, trace = 0;
    const auto childSees = [&](void* traceObj, int state, auto... attributes) {
        Started child(
            [&]() -> void* {
                EXPECT_EQ(traceObj, tavXThreadGetTraceObj());
                EXPECT_EQ(TavThreadStateRunning, state) << "the child must not run";
                return nullptr;
            },
            attributes...);
        child.join();
        EXPECT_EQ(state == TavThreadStateRunning ? TavThreadExitNormal : TavThreadExitCanceled,
                  tavXThreadAutopsy(child));
    };
    Started parent(
        [&]() -> void* {
            EXPECT_EQ(&trace, tavXThreadGetTraceObj());
            Started child([&]() -> void* {
                childSees(&trace, TavThreadStateRunning);
                childSees(&own, TavThreadStateRunning, TavThreadAttrTraceObj, &own);
                childSees(nullptr, TavThreadStateRunning, TavThreadAttrTraceObjInheritable);
                flag = 1;
                childSees(nullptr, TavThreadStateCanceling);
                childSees(&trace, TavThreadStateRunning, TavThreadAttrCancelFlag, &own);
                return nullptr;
            });
            EXPECT_EQ(TAVTHREAD_OK, child.join());
            EXPECT_EQ(TAVTHREAD_OK, tavXThreadSetCancel(nullptr, &flag, 0));
            childSees(&trace, TavThreadStateRunning);
            EXPECT_EQ(TavThreadStateCanceling, tavXThreadState(nullptr));
            return nullptr;
        },
        TavThreadAttrTraceObj, &trace, TavThreadAttrTraceObjInheritable, TavThreadAttrCancelFlag,
        &own, TavThreadAttrCancelFlagInheritable, TavThreadAttrSuspended);
    flag = 0;
    tavXThreadSetCancel(parent, &flag, 1);
    tavXThreadContinue(parent);
    EXPECT_EQ(TAVTHREAD_OK, parent.join());
    EXPECT_EQ(TavThreadExitCanceled, tavXThreadAutopsy(parent));
}

TEST(TavThreadTest, TextIdIsTruncatedAsByStrncpy) {
    Layer layer;
    char expected[32], buf[40];
    std::snprintf(expected, sizeof expected, "%8x(%8x)", 0U, static_cast<unsigned>(pthread_self()));
    std::memset(buf, '#', sizeof buf);
    EXPECT_EQ(buf, tavXThreadStrId(nullptr, buf, 30));
    EXPECT_STREQ(expected, buf);
    EXPECT_EQ('\0', buf[29]);
    EXPECT_EQ('#', buf[30]);
    tavXThreadStrId(nullptr, buf, 4);
    EXPECT_EQ(0, std::memcmp(buf, "    (", 4));
}

TEST(TavThreadKeyTest, OnceRunsItsRoutineUntilItSucceeds) {
    if (kThreadSanitizer) GTEST_SKIP() << "the sanitizer's pthread_once does not unwind";
    static int s_calls;
    s_calls = 0;
    pthread_once_t once = PTHREAD_ONCE_INIT;
    const auto routine = [] {
        if (++s_calls == 1) throw s_calls;
    };
    EXPECT_EQ(TAVTHREAD_ERROR, tavXThreadOnce(&once, routine));
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadOnce(&once, routine));
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadOnce(&once, routine));
    EXPECT_EQ(2, s_calls);
}
