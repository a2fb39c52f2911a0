#include <cerrno>

#include "TavThread/TavCondition.h"
#include "TavThread/TavEvent.h"
#include "TavThread/shared/TavMutexRecord.hpp"
#include "tests/TavThread/TavSupport.hpp"
#include "tests/faults/Injector.hpp"

namespace {

struct Mutex {
    template <class... Attributes>
    explicit Mutex(Attributes... attributes) {
        EXPECT_EQ(TAVTHREAD_OK, tavXMutexCreate(&m, attributes..., TavMutexAttrEnd));
    }
    ~Mutex() { EXPECT_EQ(TAVTHREAD_OK, tavXMutexDestroy(m)); }
    operator TavMutex*() const { return m; }
    TavMutex* m = nullptr;
};

int tryFromOtherThread(TavMutex* m) {
    int rc = 0;
    Workers(1, [&] {
        rc = tavXMutexTryLock(m);
        if (rc == TAVTHREAD_OK) tavXMutexUnlock(m);
    }).join();
    return rc;
}

}  // namespace

TEST(TavMutexTest, ReportsABadAttributeBeforeANullPointer) {
    TavMutex* m = reinterpret_cast<TavMutex*>(&m);
    EXPECT_EQ(TAVTHREAD_BADATTR, tavXMutexCreate(&m, TavMutexAttrRecursive, 7, TavMutexAttrEnd));
    EXPECT_EQ(nullptr, m);
    EXPECT_EQ(TAVTHREAD_BADATTR, tavXMutexCreate(nullptr, -1, TavMutexAttrEnd));
    EXPECT_EQ(TAVTHREAD_INVALID, tavXMutexCreate(nullptr, TavMutexAttrEnd));
    EXPECT_EQ(TAVTHREAD_INVALID, tavXMutexLock(static_cast<TavMutex*>(nullptr)));
    EXPECT_EQ(TAVTHREAD_INVALID, tavXMutexTimedLock(static_cast<TavMutex*>(nullptr), 5U));
    EXPECT_EQ(TAVTHREAD_INVALID, tavXMutexBoundedLock(static_cast<TavMutex*>(nullptr), 5U));
}

TEST(TavMutexTest, RecursiveMutexBelongsToOneThreadUntilItsLastUnlock) {
    Layer layer;
    for (const bool tracking : {false, true}) {
        Mutex m(TavMutexAttrRecursive, tracking ? TavMutexAttrTrackOwner : TavMutexAttrNoop);
        EXPECT_EQ(TAVTHREAD_ERROR, tavXMutexUnlock(m)) << "no thread holds it";
        EXPECT_EQ(TAVTHREAD_OK, tavXMutexLock(m));
        EXPECT_EQ(TAVTHREAD_OK, tavXMutexTryLock(m));
        EXPECT_EQ(TAVTHREAD_OK, tavXMutexTimedLock(m, 0));
        EXPECT_EQ(TAVTHREAD_OK, tavXMutexBoundedLock(m, 0));
        Workers(1, [&] {
            EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXMutexBoundedLock(m, 1));
            EXPECT_EQ(TAVTHREAD_ERROR, tavXMutexUnlock(m));
        }).join();
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(TAVTHREAD_BUSY, tryFromOtherThread(m)) << "after unlock " << i;
            EXPECT_EQ(TAVTHREAD_OK, tavXMutexUnlock(m));
        }
        EXPECT_EQ(TAVTHREAD_OK, tryFromOtherThread(m));
    }
}

TEST(TavMutexTest, TimedLockPollsAndSleepsAfterTheLastTry) {
    Mutex m;
    tavXMutexLock(m);
    const std::pair<unsigned, double> table[] = {{0, 0}, {1, 1}, {99, 99}, {250, 375}};
    for (const auto& [ms, least] : table) {
        Watch watch;
        EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXMutexTimedLock(m, ms));
        EXPECT_GE(watch.ms(), least) << ms;
    }
    std::atomic<int> got{-99};
    Workers waiter(1, [&] {
        got = tavXMutexTimedLock(m, kTestLimitMs);
        tavXMutexUnlock(m);
    });
    tavXMutexUnlock(m);
    waiter.join();
    EXPECT_EQ(TAVTHREAD_OK, got);
}

TEST(TavMutexTest, BoundedLockWaitsUntilTheDeadlineOrTheUnlock) {
    Layer layer;
    Mutex m(TavMutexAttrTrackOwner);
    tavXMutexLock(m);
    Workers(1, [&] {
        for (const unsigned ms : {0U, 1U, 999U}) {
            Watch watch;
            EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXMutexBoundedLock(m, ms));
            EXPECT_GE(watch.ms(), ms);
        }
    }).join();
    tavXMutexUnlock(m);
    for (const unsigned ms : {0U, TAVTHREAD_INFINITE}) {
        EXPECT_EQ(TAVTHREAD_OK, tavXMutexBoundedLock(m, ms));
        EXPECT_NE(nullptr, m.m->owner);
        tavXMutexUnlock(m);
    }
}

TEST(TavMutexTest, TrackingNamesTheHolder) {
    Layer layer;
    Mutex first(TavMutexAttrTrackOwner), second(TavMutexAttrTrackOwner);
    tavXMutexLock(first);
    EXPECT_EQ(TAVTHREAD_OK, tavXMutexLock_(second, "a.c", 7));
    EXPECT_EQ(tavXThreadSelf(), second.m->owner);
    EXPECT_STREQ("a.c", second.m->file);
    EXPECT_EQ(7, second.m->line);
    EXPECT_EQ(TAVTHREAD_OK, tavXMutexUnlock(first)) << "not the head of the list";
    EXPECT_EQ(TAVTHREAD_OK, tavXMutexUnlock(second));
    EXPECT_EQ(nullptr, second.m->owner);
}

TEST(TavMutexTest, TrackingWithoutRecordFailsButLocks) {
    Mutex m(TavMutexAttrTrackOwner);
    EXPECT_EQ(TAVTHREAD_ERROR, tavXMutexLock(m)) << "the layer is not initialised";
    EXPECT_EQ(TAVTHREAD_BUSY, tryFromOtherThread(m));
    EXPECT_EQ(TAVTHREAD_OK, tavXMutexUnlock(m));
}

TEST(TavMutexTest, ListsOfHeldMutexesSurviveMisuse) {
    if (kThreadSanitizer) GTEST_SKIP() << "the sanitizer reports the misuse that this test needs";
    Layer layer;
    Mutex first(TavMutexAttrTrackOwner), second(TavMutexAttrTrackOwner);
    Workers(1, [&] {
        tavXMutexLock(first);
        tavXMutexLock(second);
        TavMutex* destroyed = nullptr;
        EXPECT_EQ(TAVTHREAD_OK,
                  tavXMutexCreate(&destroyed, TavMutexAttrTrackOwner, TavMutexAttrEnd));
        tavXMutexLock(destroyed);
        EXPECT_EQ(TAVTHREAD_BUSY, tavXMutexDestroy(destroyed));
    }).join();
    EXPECT_EQ(nullptr, first.m->owner) << "the owner's record is destroyed";
    EXPECT_EQ(TAVTHREAD_OK, tavXMutexUnlock(second));
    EXPECT_EQ(TAVTHREAD_OK, tavXMutexUnlock(first));
}

TEST(TavConditionTest, HandsOverUnderTheMutex) {
    pthread_mutex_t m = PTHREAD_MUTEX_INITIALIZER;
    TavCondition* cv = nullptr;
    ASSERT_EQ(TAVTHREAD_OK, tavXConditionCreate(&cv, TavConditionAttrEnd));
    EXPECT_EQ(TAVTHREAD_INVALID, tavXConditionWait(cv, nullptr));
    EXPECT_EQ(TAVTHREAD_INVALID, tavXConditionWait(nullptr, &m));
    int turn = 0;
    const auto play = [&](int mine, unsigned ms) {
        for (int i = 0; i < 500; ++i) {
            pthread_mutex_lock(&m);
            while (turn != mine) EXPECT_EQ(TAVTHREAD_OK, tavXConditionTimedWait(cv, &m, ms));
            turn = 1 - mine;
            tavXConditionSignal(cv);
            pthread_mutex_unlock(&m);
        }
    };
    Workers other(1, [&] { play(1, TAVTHREAD_INFINITE); });
    play(0, kTestLimitMs);
    other.join();
    pthread_mutex_lock(&m);
    Watch watch;
    EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXConditionTimedWait(cv, &m, 30));
    EXPECT_GE(watch.ms(), 29.0);
    EXPECT_EQ(EBUSY, pthread_mutex_trylock(&m)) << "the wait locks the mutex again after a timeout";
    for (const int err : {EPERM, ENOSYS}) {
        fault::failCall(fault::kTimeOfDay, 0, err);
        EXPECT_EQ(TAVTHREAD_NOTSUPPORTED, tavXConditionTimedWait(cv, &m, 1));
    }
    pthread_mutex_unlock(&m);
    EXPECT_EQ(TAVTHREAD_OK, tavXConditionDestroy(cv));
}

TEST(TavEventTest, ReleasesOneWaiterPerSignalOrAllUntilReset) {
    for (const bool manual : {false, true}) {
        TavEvent* e = nullptr;
        ASSERT_EQ(TAVTHREAD_OK, tavXEventCreate(&e, manual, 0, TavEventAttrEnd));
        std::atomic<int> through{0};
        Workers waiters(4, [&] {
            EXPECT_EQ(TAVTHREAD_OK, tavXEventTimedWait(e, kTestLimitMs));
            ++through;
        });
        for (int signals = 1; signals <= (manual ? 1 : 4); ++signals) {
            EXPECT_EQ(TAVTHREAD_OK, tavXEventSignal(e));
            EXPECT_TRUE(eventually([&] { return through == (manual ? 4 : signals); }));
            EXPECT_EQ(manual ? TAVTHREAD_OK : TAVTHREAD_TIMEOUT, tavXEventTimedWait(e, 1));
        }
        waiters.join();
        EXPECT_EQ(4, through);
        EXPECT_EQ(TAVTHREAD_NOTSUPPORTED, tavXEventPulse(e));
        EXPECT_EQ(TAVTHREAD_OK, tavXEventSignal(e));
        EXPECT_EQ(TAVTHREAD_OK, tavXEventReset(e));
        EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXEventTimedWait(e, 0));
        EXPECT_EQ(TAVTHREAD_OK, tavXEventDestroy(e));
    }
    TavEvent* signaled = nullptr;
    ASSERT_EQ(TAVTHREAD_OK, tavXEventCreate(&signaled, 0, 1, TavEventAttrEnd));
    EXPECT_EQ(TAVTHREAD_OK, tavXEventWait(signaled));
    EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXEventTimedWait(signaled, 0));
    tavXEventDestroy(signaled);
    EXPECT_EQ(TAVTHREAD_INVALID, tavXEventPulse(nullptr));
}
