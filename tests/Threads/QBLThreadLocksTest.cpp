#include <climits>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <shared_mutex>

#include "QBLCore/Frame/QBLThreadMonitor.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadAutoResetEvent.hpp"
#include "QBLCore/Threads/QBLThreadConditionVariable.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadKey.hpp"
#include "QBLCore/Threads/QBLThreadManualResetEvent.hpp"
#include "QBLCore/Threads/QBLThreadProcess.h"
#include "QBLCore/Threads/QBLThreadRWGuard.hpp"
#include "QBLCore/Threads/QBLThreadRWLock.hpp"
#include "QBLCore/Threads/QBLThreadRecursiveCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadRecursiveMutex.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

template <class Body>
void elsewhere(Body body) {
    Workers(1, body).join();
}

/// Creates an object without memory, and expects an error with this name and text.
template <class Made>
void expectRefused(const std::string& expected) {
    std::string found = "nothing thrown";
    fault::failAllocation(0);
    try {
        Made made;
    } catch (QBLThrowable& error) {
        found = error.getThrowableName() + std::string(" ") + error.getMessage();
    }
    fault::reset();
    EXPECT_EQ(expected, found);
}

template <class Lock>
class ExclusiveLockTest : public ::testing::Test {};

typedef ::testing::Types<QBLThreadMutex, QBLThreadRecursiveMutex, QBLThreadCriticalSection,
                         QBLThreadRecursiveCriticalSection, QBLThreadRWLock,
                         QBLThreadMonitor<QBLThreadMutex, int>>
    ExclusiveLocks;
TYPED_TEST_SUITE(ExclusiveLockTest, ExclusiveLocks);

}  // namespace

TYPED_TEST(ExclusiveLockTest, ExcludesOthersUntilTheScopeIsLeftByAnException) {
    TypeParam lock;
    const auto freeElsewhere = [&lock] {
        bool free = false;
        elsewhere([&] {
            free = lock.tryLock();
            if (free) lock.unlock();
        });
        return free;
    };
    try {
        QBLThreadGuard guard(lock);
        EXPECT_FALSE(freeElsewhere());
        throw 1;
    } catch (int) {
    }
    EXPECT_TRUE(freeElsewhere());
}

TYPED_TEST(ExclusiveLockTest, KeepsACountExactAmongThreads) {
    TypeParam lock;
    int count = 0;
    Workers(4, [&] {
        for (int i = 0; i < 2000; ++i) {
            QBLThreadGuard guard(lock);
            ++count;
            if (i % 500 == 0) QBLThread::sleep(1UL);  // longer than waiters spin
        }
    }).join();
    EXPECT_EQ(8000, count);
}

// timedLock(80) never succeeds here: it tries only at the beginning.
TYPED_TEST(ExclusiveLockTest, BoundedLockNoticesThatTheLockBecomesFree) {
    TypeParam lock;
    EXPECT_TRUE(eventually([&lock] {
        bool got = false;
        Gate holds;
        Workers holder(1, [&] {
            QBLThreadGuard guard(lock);
            holds.open();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        });
        EXPECT_TRUE(holds.wait());
        if (lock.tryLock())
            lock.unlock();  // the holder has left too early: try again
        else
            got = lock.boundedLock(80);
        if (got) elsewhere([&] { EXPECT_FALSE(lock.boundedLock(0) || lock.boundedLock(1)); });
        if (got) lock.unlock();
        return got;
    }));
}

TYPED_TEST(ExclusiveLockTest, IsATimedLockableOfTheStandard) {
    TypeParam lock, second;
    static_assert(std::is_same_v<bool, decltype(lock.try_lock())>);
    static_assert(std::is_same_v<bool, decltype(lock.try_lock_for(1.5h))>);
    static_assert(std::is_same_v<bool, decltype(lock.try_lock_until(SteadyClock::now()))>);
    std::mutex standard;
    std::atomic<int> started{0};
    int count = 0;
    Workers(3, [&] {
        const int order = started++;
        for (int i = 0; i < 500; ++i) {
            std::unique_lock a(lock, std::defer_lock), b(second, std::defer_lock);
            std::unique_lock c(standard, std::defer_lock);
            order == 0 ? std::lock(a, b, c) : order == 1 ? std::lock(c, a, b) : std::lock(b, c, a);
            ++count;
        }
    }).join();
    EXPECT_EQ(1500, count);

    std::condition_variable_any changed;
    std::unique_lock mine(lock);
    elsewhere([&] {
        EXPECT_FALSE(std::unique_lock(lock, -1ms));
        EXPECT_FALSE(std::unique_lock(lock, 1us));
        EXPECT_FALSE(lock.try_lock_until(std::chrono::system_clock::now() + 1ms));
    });
    Workers other(1, [&] {
        const std::unique_lock late(lock, std::chrono::hours::max());  // while the other waits
        count = 0;
        changed.notify_one();
    });
    changed.wait(mine, [&] { return count == 0; });
    EXPECT_TRUE(mine.owns_lock());
    mine.unlock();
    EXPECT_TRUE(lock.try_lock_until(SteadyClock::time_point::min())) << "tries once";
    lock.unlock();
}

TEST(QBLThreadRWLockTest, IsASharedTimedLockableOfTheStandard) {
    QBLThreadRWLock lock;
    static_assert(std::is_same_v<bool, decltype(lock.try_lock_shared())>);
    std::shared_lock first(lock), second(lock, std::try_to_lock), third(lock, 1ms);
    EXPECT_TRUE(second && third);
    EXPECT_FALSE(lock.try_lock_for(1ms));
    first.unlock();
    second.unlock();
    third.unlock();
    const std::scoped_lock writer(lock);
    elsewhere([&] {
        EXPECT_FALSE(lock.try_lock_shared() ||
                     lock.try_lock_shared_for(std::chrono::nanoseconds(1)));
        EXPECT_FALSE(lock.try_lock_shared_until(SteadyClock::now() + 1ms));
    });
}

TEST(QBLMillisecondsTest, RoundsUpAndCapsEveryTime) {
    using namespace std::chrono;
    const auto expect = [](unsigned long ms, std::initializer_list<QBLMilliseconds> times) {
        for (const QBLMilliseconds& time : times)
            EXPECT_EQ(ms, time.count()) << &time - times.begin();
    };
    using Double = duration<double>;
    expect(0, {0ns, hours::min(), system_clock::time_point::min(), Double(-HUGE_VAL), Double(NAN)});
    expect(1, {std::chrono::nanoseconds(1), 1ms, Double(1e-300)});
    expect(2, {1000001ns, duration<unsigned char, std::ratio<1, 3000>>(6)});
    expect(334, {duration<int, std::ratio<1, 3>>(1)});
    expect(172800000, {48h});
    expect(4294967294, {4294967293999999ns, 4294967294ms});
    expect(QBLWaitForever, {4294967294000001ns, hours::max(), duration<float>(HUGE_VALF),
                            time_point<SteadyClock, hours>::max()});
    const unsigned long left = QBLMilliseconds(SteadyClock::now() + 1h).count();
    EXPECT_TRUE(left > 3600000 - kTestLimitMs && left <= 3600001) << left;
}

TEST(QBLMillisecondsTest, IsTheTimeoutOfASleep) {
    const auto begin = SteadyClock::now();
    QBLThread::sleep(30UL);
    EXPECT_GE(SteadyClock::now() - begin, 30ms);
    const auto end = SteadyClock::now() + 1500us;
    QBLThread::sleep(end);
    EXPECT_GE(SteadyClock::now(), end);
}

TEST(QBLThreadMutexTest, RecursiveLocksCountAndRejectOtherThreads) {
    QBLThreadRecursiveMutex mutex;
    QBLThreadRecursiveCriticalSection section;
    for (int i = 0; i < 3; ++i) {
        mutex.lock();
        ASSERT_TRUE(section.tryLock());
    }
    elsewhere([&] {
        EXPECT_FALSE(mutex.tryLock());
        QBL_EXPECT_THROW(mutex.unlock(), QBLThreadResourceError,
                         "QBLThreadMutex::unlock: TavThread interface or unexpected error");
        QBL_EXPECT_THROW(
            section.unlock(), QBLThreadResourceError,
            "QBLThreadCriticalSection::unlock: TavThread interface or unexpected error");
    });
    for (int i = 0; i < 3; ++i) {
        mutex.unlock();
        section.unlock();
    }
    elsewhere([&] {
        ASSERT_TRUE(mutex.tryLock()) << "free after as many unlocks as locks";
        mutex.unlock();
    });
}

TEST(QBLThreadLocksTest, TryAndTimedOperationsReturnInsteadOfThrowing) {
    QBLThreadMutex mutex;
    QBLThreadRWLock lock;
    QBLThreadSemaphore semaphore;
    QBLThreadAutoResetEvent automatic;
    QBLThreadManualResetEvent manual;
    ASSERT_TRUE(mutex.timedLock(0us) && lock.tryReadLock() && lock.timedReadLock(0ns));
    mutex.unlock();
    lock.unlock();
    lock.unlock();
    {
        QBLThreadRWGuard writer(lock, 1);
        elsewhere([&] {
            EXPECT_FALSE(lock.tryReadLock() || lock.timedReadLock(SteadyClock::now()));
            EXPECT_FALSE(lock.timedLock(std::chrono::nanoseconds(1)) ||
                         lock.boundedReadLock(std::chrono::nanoseconds(1)) || lock.tryLock());
        });
    }
    {
        QBLThreadRWGuard reader(lock, 0);
        elsewhere([&] {
            ASSERT_TRUE(!lock.tryLock() && lock.tryReadLock());
            lock.unlock();
        });
    }
    EXPECT_FALSE(semaphore.tryWait() || semaphore.timedWait(1us) || semaphore.boundedWait(1us));
    semaphore.post(4);
    semaphore.post(0);
    semaphore.wait();
    EXPECT_TRUE(semaphore.tryWait() && semaphore.timedWait(0) && semaphore.boundedWait(0));
    EXPECT_FALSE(semaphore.boundedWait(0));
    semaphore.initialize(1);
    EXPECT_TRUE(semaphore.boundedWait(QBLWaitForever));

    EXPECT_FALSE(automatic.timedWait(1us) || manual.timedWait(0.5ms));
    automatic.signal();
    manual.signal();
    automatic.wait();
    manual.wait();
    EXPECT_TRUE(!automatic.timedWait(0) && manual.timedWait(0));
    manual.reset();
    EXPECT_FALSE(manual.timedWait(0));
    manual.initialize(1);
    EXPECT_TRUE(manual.timedWait(QBLWaitForever));
}

TEST(QBLThreadLocksTest, LongTimeoutsAreNotTruncated) {
    QBLThreadSemaphore semaphore;
    Gate waiting;
    // If long has 64 bits, the lower half of this value is 0. So a truncated timeout would be 0.
    const unsigned long ages = sizeof(long) > 4 ? ULONG_MAX - 0xFFFFFFFFUL : ULONG_MAX - 1;
    Workers waiter(1, [&] {
        waiting.open();
        EXPECT_TRUE(semaphore.boundedWait(ages));
        EXPECT_TRUE(semaphore.boundedWait(0xFFFFFFFFUL));
    });
    ASSERT_TRUE(waiting.wait());
    semaphore.post(2);
    waiter.join();
    QBL_EXPECT_THROW(
        semaphore.initialize(ULONG_MAX), QBLThreadResourceError,
        "QBLThreadSemaphore::QBLThreadSemaphore: TavThread interface or unexpected error");
    semaphore.post();
    EXPECT_TRUE(semaphore.tryWait()) << "a rejected count leaves the semaphore unchanged";
}

TEST(QBLThreadConditionVariableTest, HoldsTheLockAfterATimeoutAndRefusesTrackedLocks) {
    QBLThreadMutex mutex;
    QBLThreadConditionVariable changed;
    QBLThreadGuard guard(mutex);
    EXPECT_FALSE(changed.timedWait(mutex, 2ms));
    elsewhere([&] { EXPECT_FALSE(mutex.tryLock()); });

    ASSERT_EQ(0, qblThreadProcessInitialize(nullptr));
    QBLThreadMutex tracking(1);
    tracking.lock();
    QBL_EXPECT_THROW(changed.wait(tracking), QBLThreadResourceError,
                     "QBLThreadConditionVariable::wait: TavThread interface or unexpected error");
    tracking.unlock();
    EXPECT_EQ(0, qblThreadProcessTerminate(nullptr));
}

TEST(QBLThreadLocksTest, ExhaustedMemoryThrowsTheErrorOfEachClass) {
    const auto memory = [](const std::string& name) {
        return "QBLOutOfMemoryError " + name + "::" + name + ": TavThread ran out of memory";
    };
    const auto other = [](const std::string& name) {
        return "QBLThreadResourceError " + name + "::" + name +
               ": TavThread interface or unexpected error";
    };
    expectRefused<QBLThreadMutex>(memory("QBLThreadMutex"));
    expectRefused<QBLThreadCriticalSection>(memory("QBLThreadCriticalSection"));
    expectRefused<QBLThreadRWLock>(memory("QBLThreadRWLock"));
    expectRefused<QBLThreadSemaphore>(memory("QBLThreadSemaphore"));
    expectRefused<QBLThreadKey>(memory("QBLThreadKey"));
    expectRefused<QBLThreadManualResetEvent>(other("QBLThreadManualResetEvent"));
    expectRefused<QBLThreadConditionVariable>(other("QBLThreadConditionVariable"));
    expectRefused<QBLThreadAutoResetEvent>(
        "QBLThreadResourceError QBLThreadAutoResetEvent: out of events");
}
