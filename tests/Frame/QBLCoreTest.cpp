#include "QBLCore/Frame/QBLCore.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/ThreadPools/QBLSubmit.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolVariable.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"
#include "i18n/cpp/i18n_pooledstring.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/Workers.hpp"

namespace {

/// Returns true if threads can be started, that is, if the library is running.
bool isUp() {
    QBLThread thread;
    try {
        thread.start();
    } catch (QBLThrowable&) {
        return false;
    }
    thread.join();
    return true;
}

}  // namespace

TEST(QBLCoreTest, RunsFromTheFirstStartToTheLastStop) {
    for (int cycle = 0; cycle < 2; ++cycle) {
        EXPECT_EQ(-2, qblCoreTerminate());
        EXPECT_FALSE(isUp());
        EXPECT_EQ(0, qblCoreInitialize());
        EXPECT_EQ(0, qblInitialize());
        EXPECT_EQ(0, qblTerminate());
        EXPECT_TRUE(isUp());
        EXPECT_EQ(0, qblCoreTerminate());
    }
    EXPECT_FALSE(isUp());
}

TEST(QBLCoreTest, ConcurrentStartsAndStopsLeaveItStopped) {
    Workers(8, [] {
        std::minstd_rand random(std::random_device{}());
        int open = 0;
        for (int done = 0; done < 500;) {
            if (open == 0 || random() % 2 == 0) {
                EXPECT_EQ(0, qblCoreInitialize());
                ++open;
            } else {
                EXPECT_EQ(0, qblCoreTerminate());
                --open;
                ++done;
            }
        }
        for (; open != 0; --open) EXPECT_EQ(0, qblCoreTerminate());
    }).join();
    EXPECT_EQ(-2, qblCoreTerminate());
}

TEST(QBLCoreTest, CountsFailedStarts) {
    int failures = 0;
    fault::eachAllocation([&failures] {
        int result = -3;
        try {
            result = qblCoreInitialize();
        } catch (const QBLThrowable& error) {
            EXPECT_STREQ("QBLOutOfMemoryError", error.getThrowableName());
        }
        if (result != 0) ++failures;
        qblCoreTerminate();
        EXPECT_EQ(-2, qblCoreTerminate());
    });
    EXPECT_GT(failures, 0);
    EXPECT_EQ(0, qblCoreInitialize());
    EXPECT_TRUE(isUp());
    EXPECT_EQ(0, qblCoreTerminate());
}

TEST(QBLCoreTest, StopsWhenMemoryIsExhaustedEvenAfterAFailedStart) {
    if (kThreadSanitizer) GTEST_SKIP() << "the sanitizer starts no thread in a forked process";
    for (const bool startFails : {false, true}) {
        const int status = inChild([=] {
            fault::exhaustMemory(startFails);
            try {
                qblCoreInitialize();
            } catch (const QBLOutOfMemoryError&) {
            }
            fault::exhaustMemory(true);
            return qblCoreTerminate();
        });
        EXPECT_EQ(0, status) << startFails;
    }
}

// The threads of pools wait, and a thread of the program waits, but none changes anything.
TEST(QBLCoreTest, IsUsableInAForkedProcessBesideIdleThreads) {
    if (kThreadSanitizer) GTEST_SKIP() << "the sanitizer starts no thread in a forked process";
    ASSERT_EQ(0, qblCoreInitialize());
    {
        QBLThreadPoolQueued queued(2, 8);
        QBLThreadPoolFixed fixed(1);
        QBLThreadPoolVariable variable(1, 1000, 10000);
        QBLThreadSemaphore waits(0), go(0);
        Workers waiter(1, [&] {
            waits.post();
            go.wait();
        });
        waits.wait();
        for (QBLThreadPool* pool :
             std::initializer_list<QBLThreadPool*>{&queued, &fixed, &variable})
            qblSubmit(*pool, [] {}).get();
        EXPECT_EQ(0, inChild([] {
                      alarm(20);
                      QBLThreadPoolQueued pool(2, 8);
                      const I18NPooledString pooled("\u65E5");
                      const std::string text = qblSubmit(pool, [&] {
                                                   return I18NString(pooled.getString()).toUtf8();
                                               }).get();
                      const bool works = text == "\u65E5" && isUp() && qblCoreTerminate() == 0 &&
                                         !isUp() && qblCoreInitialize() == 0 && isUp();
                      return works ? 0 : 1;
                  }));
        go.post();
        waiter.join();
    }
    EXPECT_EQ(0, qblCoreTerminate());
}

TEST(QBLCoreTest, ReportsItsVersionAndCompatibility) {
    const struct {
        int major, minor, result;
    } table[] = {{1, 0, 0}, {1, -5, 0}, {1, 1, -1}, {0, 0, -1}, {2, 0, -1}, {-1, 0, -1}};
    for (const auto& row : table) {
        EXPECT_EQ(row.result, qblCoreIsCompatibleWith(row.major, row.minor));
        EXPECT_EQ(row.result, qblIsCompatibleWith(row.major, row.minor));
    }
    unsigned major = 7, minor = 7;
    EXPECT_EQ(0, qblCoreGetApiVersion(&major, nullptr));
    EXPECT_EQ(0, qblGetApiVersion(nullptr, &minor));
    EXPECT_EQ(1U, major);
    EXPECT_EQ(0U, minor);
}

TEST(QBLCoreTest, ReturnsThePreviousHandler) {
    const QBLNewHandler handler = [] {};
    const QBLNewHandler before = qblSetNewHandler(handler);
    EXPECT_EQ(handler, qblSetNewHandler(before));
}

TEST(QBLCoreTest, BatchModeRaisesTheNicenessByFour) {
    EXPECT_EQ(0, inChild([] {  // a process cannot lower its niceness again
                  errno = EINVAL;
                  const int before = nice(0);
                  const bool raised = qblSetBatchMode() == 1;
                  return raised && nice(0) == std::min(before + 4, 19) ? 0 : 1;
              }));
}
