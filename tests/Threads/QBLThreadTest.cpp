#include "QBLCore/Threads/QBLThread.hpp"

#include <stdexcept>

#include "QBLCore/Threads/QBLThreadInit.hpp"
#include "QBLCore/Threads/QBLThreadProcess.h"
#include "tests/faults/Injector.hpp"
#include "tests/support/Cancellable.hpp"
#include "tests/support/Tasks.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

std::atomic<int> g_exits{0};
void countExit() { ++g_exits; }

struct QBLThreadTest : ::testing::Test {
    void SetUp() override {
        ASSERT_EQ(0, qblThreadProcessInitialize("test"));
        g_exits = 0;
    }
    void TearDown() override { EXPECT_EQ(0, qblThreadProcessTerminate("test")); }

    template <class Body>
    void run(Body body) {
        Job job(body);
        QBLThread thread(&job);
        thread.start();
        thread.join();
    }
};

}  // namespace

TEST_F(QBLThreadTest, RunsARunnableOrItselfAndMayStartAgain) {
    std::atomic<int> runs{0};
    Gate gate;
    Job job([&] {
        gate.wait();
        ++runs;
    });
    QBLThread thread(&job, 1);
    EXPECT_FALSE(thread.isAlive());
    thread.join();
    thread.start();
    EXPECT_TRUE(thread.isAlive());
    QBL_EXPECT_THROW(thread.start(), QBLIllegalStateError,
                     "QBLThread::start: the thread was started before and not joined");
    gate.open();
    thread.join();
    EXPECT_FALSE(thread.isAlive());
    thread.join();
    thread.start();
    thread.join();
    EXPECT_EQ(2, runs);

    struct Own : QBLThread {
        ~Own() override { join(); }
        void run() override { id = currentThreadId(); }
        std::atomic<unsigned long> id{0};
    } own;
    own.start();
    own.join();
    EXPECT_NE(0UL, own.id);
    EXPECT_NE(QBLThread::currentThreadId(), own.id);
}

TEST_F(QBLThreadTest, CallsTheExitRoutineForEveryEndOfRun) {
    run([] { EXPECT_EQ(0, QBLThread::atExit(countExit, 1)); });
    EXPECT_EQ(1, g_exits);
    run([] {
        QBLThread::atExit(countExit, 1);
        throw std::runtime_error("dropped");
    });
    EXPECT_EQ(2, g_exits);
    run([] {
        QBLThread::atExit(countExit, 1);
        pthread_exit(nullptr);
    });
    EXPECT_EQ(3, g_exits);
    run([] {
        QBLThread::atExit(countExit, 1);
        EXPECT_EQ(-1, QBLThread::atExit(nullptr, 1));
        QBLThread::atExit(nullptr, 0);
    });
    EXPECT_EQ(3, g_exits);
    EXPECT_EQ(-1, QBLThread::atExit(countExit, 1)) << "this thread was not started by a QBLThread";
}

TEST_F(QBLThreadTest, StaysUsableUntilTheLastTerminate) {
    QBLThreadInit nested;
    EXPECT_TRUE(nested.getSuccess());
    EXPECT_EQ(0, qblThreadProcessTerminate(nullptr));
    std::atomic<bool> ran{false};
    run([&] { ran = true; });
    EXPECT_TRUE(ran);
}

TEST_F(QBLThreadTest, RefusesToJoinItselfAndReportsFailedStarts) {
    QBLThread* self = nullptr;
    std::string text;
    Gate ready;
    Job job([&] {
        ready.wait();
        try {
            self->join();
        } catch (QBLThrowable& e) {
            text = e.getMessage();
        }
    });
    {
        QBLThread thread(&job);
        self = &thread;
        thread.start();
        ready.open();
    }
    EXPECT_EQ("TavThread either detected deadlock or an unexpected error occurred", text);

    QBLThread never(&job);
    fault::failCall(fault::kThreadCreate, 0, EAGAIN);
    QBL_EXPECT_THROW(never.start(), QBLThreadResourceError, nullptr);
    fault::failCall(fault::kThreadCreate, 0, EPERM);
    QBL_EXPECT_THROW(never.start(), QBLThreadResourceError, "TavThread interface or unknown error");
    fault::failAllocation(0);
    QBL_EXPECT_THROW(never.start(), QBLOutOfMemoryError, "TavThread ran out of memory");
    fault::reset();
    EXPECT_FALSE(never.isAlive());
}

TEST_F(QBLThreadTest, MayBeDestroyedByItsOwnRunnable) {
    for (int i = 0; i < 20; ++i) {
        Gate gone;
        QBLThread* thread = nullptr;
        Job job([&] {
            delete thread;  // sometimes before start() has returned
            gone.open();
        });
        thread = new QBLThread(&job);
        thread->start();
        EXPECT_TRUE(gone.wait());
    }
}

TEST_F(QBLThreadTest, MayDeleteItselfAtTheEndOfRun) {
    static Gate s_gone;
    struct Own : QBLThread {
        ~Own() override {
            joinQuietly();
            s_gone.open();
        }
        void run() override { delete this; }
    };
    (new Own)->start();
    EXPECT_TRUE(s_gone.wait());
}

TEST_F(QBLThreadTest, JoinCanBeCancelledAndRepeatedExceptInDestructors) {
    std::atomic<bool> ran{false};
    Gate started, release, joining, again;
    Job first([&] { ran = release.wait(); });
    Cancellable destructor([&] {
        QBLThread thread(&first);
        thread.start();
        started.open();
    });
    EXPECT_TRUE(started.wait());
    destructor.cancel();
    release.open();
    destructor.join();
    EXPECT_TRUE(ran);
    if (kSanitizer) GTEST_SKIP() << "the sanitizer's pthread_join does not support cancellation";

    ran = false;
    Job second([&] { ran = again.wait(); });
    QBLThread thread(&second);
    thread.start();
    Cancellable joiner([&] {
        joining.open();
        thread.join();
    });
    EXPECT_TRUE(joining.wait());
    joiner.cancel();
    EXPECT_TRUE(joiner.join());
    again.open();
    thread.join();
    EXPECT_TRUE(ran);
}

TEST(QBLThreadStoppedTest, CannotStartWithoutTheLibrary) {
    QBLThread thread;
    QBL_EXPECT_THROW(thread.start(), QBLThreadResourceError,
                     "TavThread interface or unknown error");
}
