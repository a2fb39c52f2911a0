#include "TavThread/TavStateTrap.h"

#include <string>

#include "tests/TavThread/TavSupport.hpp"

namespace {

struct Log {
    std::string text;  // written by one thread at a time
    static void append(void* self, TavThread*, int state) {
        static_cast<Log*>(self)->text += std::to_string(state);
    }
};

}  // namespace

TEST(TavStateTrapTest, CallbacksSeeEveryChangeTheLastAddedFirst) {
    Layer layer;
    Log log;
    Started thread([]() -> void* { return nullptr; }, TavThreadAttrSuspended);
    ASSERT_TRUE(eventually([&] { return tavXThreadState(thread) == TavThreadStateSuspended; }));
    for (int state = 0; state < 5; ++state)
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateCallback(thread, state, &Log::append, &log));
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateCallback(
                                thread, TavThreadStateRunning,
                                [](void* arg, TavThread*, int) {
                                    static_cast<Log*>(arg)->text += "first ";
                                    throw 1;
                                },
                                &log));
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateCallback(thread, 1, nullptr, nullptr));
    for (const int state : {5, -1})
        EXPECT_EQ(TAVTHREAD_INVALID, tavXThreadStateCallback(thread, state, &Log::append, &log));
    EXPECT_EQ(TAVTHREAD_INVALID, tavXThreadStateCallback(nullptr, 0, &Log::append, &log));
    tavXThreadCancel(thread);
    thread.join();
    EXPECT_EQ(0U, log.text.find("first ")) << log.text;
    EXPECT_NE(std::string::npos, log.text.find('3')) << log.text;
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
        Started thread([]() -> void* { return nullptr; }, TavThreadAttrSuspended);
        for (TavStateTrap* trap : traps)
            EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapSet(trap, thread, &Log::append, &log));
        EXPECT_EQ(TAVTHREAD_OK,
                  tavXThreadStateCallback(thread, TavThreadStateCanceling, &Log::append, &log));
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapNext(traps[2], &next));
        EXPECT_EQ(traps[1], next);
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapDestroy(traps[1]));
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapNext(traps[2], &next));
        EXPECT_EQ(traps[0], next) << "past the one that is gone";
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapNext(traps[0], &next));
        EXPECT_EQ(nullptr, next);
        tavXThreadCancel(thread);
    }
    EXPECT_EQ("333", log.text) << "two traps and a callback";
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapNext(traps[2], &next)) << "its thread is gone";
    EXPECT_EQ(nullptr, next);
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapDestroy(traps[2]));
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadStateTrapDestroy(traps[0]));
}
