#include "TavThread/TavRWLock.h"

#include "TavThread/shared/TavRWLockRecord.hpp"
#include "tests/TavThread/TavSupport.hpp"
#include "tests/support/Cancellable.hpp"

namespace {

struct TavRWLockTest : ::testing::Test {
    TavRWLockTest() { EXPECT_EQ(TAVTHREAD_OK, tavXRWLockCreate(&rw, TavRWLockAttrEnd)); }
    ~TavRWLockTest() override {
        EXPECT_EQ(0U, rw->word.load()) << "the lock is free and uses its fast path";
        EXPECT_EQ(TAVTHREAD_OK, tavXRWLockDestroy(rw));
    }
    bool somebodyWaits() const { return (rw->word.load() & kTavRWWaiters) != 0; }
    bool readerWaits() {
        pthread_mutex_lock(&rw->mutex);
        const bool waits = rw->waitingReaders > 0;
        pthread_mutex_unlock(&rw->mutex);
        return waits;
    }
    Workers reader() {
        return Workers(1, [this] {
            EXPECT_EQ(TAVTHREAD_OK, tavXRWLockTimedReadLock(rw, kTestLimitMs));
            tavXRWLockUnlock(rw);
        });
    }

    TavRWLock* rw = nullptr;
};

}  // namespace

TEST_F(TavRWLockTest, TryAndTimedLocksReportABusyLock) {
    EXPECT_EQ(TAVTHREAD_OK, tavXRWLockReadLock(rw));
    EXPECT_EQ(TAVTHREAD_OK, tavXRWLockTryReadLock(rw));
    EXPECT_EQ(TAVTHREAD_BUSY, tavXRWLockTryWriteLock(rw));
    EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXRWLockTimedWriteLock(rw, 1));
    EXPECT_EQ(TAVTHREAD_OK, tavXRWLockUnlock(rw));
    EXPECT_EQ(TAVTHREAD_OK, tavXRWLockUnlock(rw));
    EXPECT_EQ(TAVTHREAD_OK, tavXRWLockTryWriteLock(rw));
    EXPECT_EQ(TAVTHREAD_BUSY, tavXRWLockTryReadLock(rw));
    EXPECT_EQ(TAVTHREAD_BUSY, tavXRWLockTryWriteLock(rw));
    EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXRWLockTimedReadLock(rw, 1));
    EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXRWLockTimedWriteLock(rw, 0));
    EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXRWLockBoundedReadLock(rw, 0));
    EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXRWLockBoundedWriteLock(rw, 0));
    EXPECT_EQ(TAVTHREAD_OK, tavXRWLockUnlock(rw));
    EXPECT_EQ(TAVTHREAD_OK, tavXRWLockUnlock(rw)) << "the lock is already free";
    EXPECT_EQ(TAVTHREAD_OK, tavXRWLockTimedWriteLock(rw, 0));
    EXPECT_EQ(TAVTHREAD_OK, tavXRWLockUnlock(rw));
    EXPECT_EQ(TAVTHREAD_OK, tavXRWLockBoundedWriteLock(rw, TAVTHREAD_INFINITE));
    EXPECT_EQ(TAVTHREAD_OK, tavXRWLockUnlock(rw));
    EXPECT_EQ(TAVTHREAD_INVALID, tavXRWLockBoundedWriteLock(nullptr, 1));
    EXPECT_EQ(TAVTHREAD_INVALID, tavXRWLockUnlock(nullptr));
}

TEST_F(TavRWLockTest, WakeUpsDoNotProlongBoundedLocks) {
    tavXRWLockWriteLock(rw);
    std::atomic<bool> ended{false};
    Workers waiter(1, [&] {
        EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXRWLockBoundedReadLock(rw, 50));
        EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXRWLockBoundedWriteLock(rw, 50));
        ended = true;
    });
    EXPECT_TRUE(eventually([&] {
        pthread_cond_broadcast(&rw->readers);
        pthread_cond_broadcast(&rw->writers);
        return ended.load();
    }));
    tavXRWLockUnlock(rw);
}

TEST_F(TavRWLockTest, WaitingWriterHoldsBackNewReaders) {
    tavXRWLockReadLock(rw);
    std::string order;  // guarded by the lock
    Workers writer(1, [&] {
        EXPECT_EQ(TAVTHREAD_OK, tavXRWLockWriteLock(rw));
        order += 'w';
        tavXRWLockUnlock(rw);
    });
    ASSERT_TRUE(eventually([&] { return somebodyWaits(); }));
    EXPECT_EQ(TAVTHREAD_BUSY, tavXRWLockTryReadLock(rw));
    EXPECT_EQ(TAVTHREAD_TIMEOUT, tavXRWLockTimedReadLock(rw, 1));
    Workers reader(1, [&] {
        EXPECT_EQ(TAVTHREAD_OK, tavXRWLockTimedReadLock(rw, TAVTHREAD_INFINITE));
        order += 'r';
        tavXRWLockUnlock(rw);
    });
    tavXRWLockUnlock(rw);
    writer.join();
    reader.join();
    EXPECT_EQ("wr", order);
}

TEST_F(TavRWLockTest, ReadersContinueAfterTheWriterTimesOut) {
    for (const auto writeLock : {tavXRWLockTimedWriteLock, tavXRWLockBoundedWriteLock}) {
        tavXRWLockReadLock(rw);
        std::atomic<bool> gaveUp{false};
        Workers writer(1, [&] {
            EXPECT_EQ(TAVTHREAD_TIMEOUT, writeLock(rw, 20));
            gaveUp = true;
        });
        EXPECT_TRUE(eventually([&] { return somebodyWaits() || gaveUp; }));
        reader().join();  // ends while this thread still holds its read lock
        writer.join();
        tavXRWLockUnlock(rw);
    }
}

// A cancellation unwinds the wait. The writer must then withdraw its request for the lock.
TEST_F(TavRWLockTest, ReadersContinueAfterTheWriterIsCancelled) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer reports a false overflow while the stack unwinds";
#endif
    tavXRWLockReadLock(rw);
    Cancellable writer([this] {
        tavXRWLockWriteLock(rw);
        ADD_FAILURE() << "the reader still holds the lock";
    });
    EXPECT_TRUE(eventually([&] { return somebodyWaits(); }));
    Workers waiting = reader();
    EXPECT_TRUE(eventually([&] { return readerWaits(); }));
    writer.cancel();
    EXPECT_TRUE(writer.join());
    waiting.join();
    tavXRWLockUnlock(rw);
    EXPECT_EQ(TAVTHREAD_OK, tavXRWLockTryWriteLock(rw))
        << "the cancelled writer left no trace in the lock";
    tavXRWLockUnlock(rw);
}

TEST_F(TavRWLockTest, TimedOutWriterLosesNoWakeUp) {
    for (int round = 0; round < 25; ++round) {
        tavXRWLockReadLock(rw);
        std::atomic<bool> writerLeft{false};
        Workers writer(1, [&] {
            // On a busy machine, the writer may get the lock before its time is over.
            if (tavXRWLockTimedWriteLock(rw, 10) == TAVTHREAD_OK) tavXRWLockUnlock(rw);
            writerLeft = true;
        });
        EXPECT_TRUE(eventually([&] { return somebodyWaits() || writerLeft; }));
        Workers waiting = reader();
        EXPECT_TRUE(eventually([&] { return readerWaits() || writerLeft; }));
        // While this thread holds the mutex, the writer times out and the unlocker unlocks. Then
        // either of these two threads may get the mutex first.
        pthread_mutex_lock(&rw->mutex);
        Workers unlocker(1, [&] { tavXRWLockUnlock(rw); });
        for (Watch watch; watch.ms() < 15;) std::this_thread::yield();
        pthread_mutex_unlock(&rw->mutex);
    }
}

TEST_F(TavRWLockTest, OneWriterOrManyReadersAtATime) {
    int value = 0, copy = 0;  // equal while no writer holds the lock
    std::atomic<int> seed{0}, written{0};
    Workers(5, [&] {
        unsigned mine = static_cast<unsigned>(++seed);
        for (int i = 0; i < 2000; ++i) {
            mine = mine * 1664525U + 1013904223U;
            const unsigned kind = mine >> 24;
            int rc;
            if (kind < 160) {
                rc = kind < 80    ? tavXRWLockReadLock(rw)
                     : kind < 120 ? tavXRWLockTryReadLock(rw)
                     : kind < 140 ? tavXRWLockBoundedReadLock(rw, kind % 2)
                                  : tavXRWLockTimedReadLock(rw, kind % 2);
                EXPECT_TRUE(rc != TAVTHREAD_OK || value == copy);
            } else {
                rc = kind < 200   ? tavXRWLockWriteLock(rw)
                     : kind < 230 ? tavXRWLockTryWriteLock(rw)
                     : kind < 243 ? tavXRWLockBoundedWriteLock(rw, kind % 2)
                                  : tavXRWLockTimedWriteLock(rw, kind % 2);
                if (rc == TAVTHREAD_OK) {
                    ++value;
                    ++written;
                    copy = value;
                }
            }
            if (rc == TAVTHREAD_OK) tavXRWLockUnlock(rw);
        }
    }).join();
    EXPECT_EQ(written, value);
    EXPECT_GT(written, 0);
}
