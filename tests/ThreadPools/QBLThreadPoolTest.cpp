#include <pthread.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLSubmit.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolVariable.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/Tasks.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

using namespace std::chrono_literals;

namespace {

using Tasks = std::initializer_list<QBLThreadRunnable*>;
using Pools = std::initializer_list<QBLThreadPool*>;

struct Counting : QBLThreadRunnable {
    void run() override { ++runs; }
    std::atomic<int> runs{0};
};

struct Blocking : QBLThreadRunnable {
    explicit Blocking(Gate& gate) : m_gate(gate) {}
    void run() override {
        ++started;
        m_gate.wait();
        ++ended;
    }
    std::atomic<int> started{0}, ended{0};

private:
    Gate& m_gate;
};

/// Ends the thread that runs it: at once by pthread_exit(), or by a cancellation that takes effect
/// at the next cancellation point.
struct Ending : QBLThreadRunnable {
    explicit Ending(bool cancelled = false) : m_bCancelled(cancelled) {}
    void run() override {
        ++runs;
        m_bCancelled ? static_cast<void>(pthread_cancel(pthread_self())) : pthread_exit(nullptr);
    }
    std::atomic<int> runs{0};

private:
    bool m_bCancelled;
};

struct QBLThreadPoolTest : ::testing::Test {
    void SetUp() override { ASSERT_EQ(0, qblCoreInitialize()); }
    void TearDown() override {
        fault::reset();
        EXPECT_EQ(0, qblCoreTerminate());
    }
    std::unique_ptr<QBLThreadPool> make(int kind) {
        if (kind == 0) return std::make_unique<QBLThreadPoolFixed>(2);
        if (kind == 1) return std::make_unique<QBLThreadPoolVariable>(1, 50, 1);
        return std::make_unique<QBLThreadPoolQueued>(2, 0);
    }
};

}  // namespace

TEST_F(QBLThreadPoolTest, DestructorRunsEveryAcceptedTask) {
    Job throwing([] { throw std::runtime_error("dropped"); });
    for (int kind = 0; kind < 3; ++kind) {
        Counting counting;
        int accepted = 0;
        for (int cycle = 0; cycle < 100; ++cycle) {
            auto pool = make(kind);
            EXPECT_EQ(1, pool->execute(&throwing, QBLWaitForever));
            for (int i = 0; i < 5; ++i)
                accepted += pool->execute(&counting, i == 0 ? QBLWaitForever : 0);
        }
        EXPECT_EQ(accepted, counting.runs) << "kind " << kind;
        EXPECT_GE(accepted, 100);
    }
}

TEST_F(QBLThreadPoolTest, RefusesTasksWithItsOwnTextAfterTheStopFlag) {
    const std::string names[] = {"Fixed", "Variable", "Queued"};
    Counting counting;
    for (int kind = 0; kind < 3; ++kind) {
        auto pool = make(kind);
        EXPECT_EQ(1, pool->execute(nullptr, QBLWaitForever)) << "a null task does nothing";
        pool->setStopWork(1);
        const std::string text =
            "QBLThreadPool" + names[kind] + "::execute: attempted to execute while shutting down";
        QBL_EXPECT_THROW(pool->execute(&counting, 0), QBLIllegalStateError, text.c_str());
    }
}

TEST_F(QBLThreadPoolTest, FixedStartsWithIdleWorkersAndHandsTasksToThemOnly) {
    for (int round = 0; round < 50; ++round) {
        Gate gate;
        Blocking blocking(gate);
        QBLThreadPoolFixed pool(3);
        for (int k = 0; k < 3; ++k) EXPECT_EQ(1, pool.execute(&blocking, 0));
        EXPECT_EQ(0, pool.execute(&blocking, 0));
        EXPECT_EQ(0, pool.execute(&blocking, 2ms));
        gate.open();
        EXPECT_EQ(1, pool.execute(&blocking, QBLWaitForever));
    }
}

TEST_F(QBLThreadPoolTest, VariableGrowsWithItsTasksAndShrinksToThePermanentWorkers) {
    Gate gate;
    Blocking blocking(gate);
    QBLThreadPoolVariable pool(2, std::chrono::seconds(1), std::chrono::microseconds(1));
    for (int i = 0; i < 5; ++i) EXPECT_EQ(1, pool.execute(&blocking, 0s));
    EXPECT_EQ(5U, pool.getWorkerCount());
    EXPECT_TRUE(eventually([&] { return blocking.started == 5; }));
    gate.open();
    EXPECT_TRUE(eventually([&] { return pool.getWorkerCount() == 2 && blocking.ended == 5; }));
}

TEST_F(QBLThreadPoolTest, VariableLosesNoTaskWhenItsWorkersRetire) {
    QBLThreadPoolVariable pool(0, 1000, std::chrono::milliseconds(1));
    Counting counting;
    for (int i = 1; i <= 400; ++i) {
        ASSERT_EQ(1, pool.execute(&counting, 0));
        ASSERT_TRUE(eventually([&] { return counting.runs == i; })) << i;
        if (i % 4 == 0) QBLThread::sleep(1);  // as long as the wait after which workers retire
    }
}

TEST_F(QBLThreadPoolTest, VariableReapsAWorkerWhoseExitRoutineSubmits) {
    static QBLThreadPoolVariable* s_pool;
    static Counting s_counting;
    Job chain([] { QBLThread::atExit([] { s_pool->execute(&s_counting, 0); }, 1); });
    QBLThreadPoolVariable own(0, 1000, 1);
    s_pool = &own;
    EXPECT_EQ(1, own.execute(&chain, 0));
    EXPECT_TRUE(eventually([&] { return s_counting.runs == 1; }));
}

TEST_F(QBLThreadPoolTest, VariableSurvivesATaskThatEndsItsThread) {
    Ending ending;
    Counting counting;
    QBLThreadPoolVariable pool(1, 1000, 1);
    EXPECT_EQ(1, pool.execute(&ending, 0));
    EXPECT_TRUE(eventually([&] { return pool.getWorkerCount() == 0; }));
    for (int i = 1; i <= 500; ++i) {
        EXPECT_EQ(1, pool.execute(&ending, 0));
        while (ending.runs <= i) {
        }
        // The delay grows, so that the next task arrives at different moments while the thread
        // ends.
        for (std::atomic<int> spin{i * 100}; spin > 0; --spin) {
        }
        EXPECT_EQ(1, pool.execute(&counting, 0));
        ASSERT_TRUE(eventually([&] { return counting.runs == i; })) << i;
    }
}

TEST_F(QBLThreadPoolTest, WorkerGetsANewThreadWhenATaskEndsItsThread) {
    for (int kind = 0; kind < 3; ++kind) {
        // After a cancellation, the address sanitizer leaves the unwound frames poisoned.
        Ending exits, cancels(!kSanitizer);
        Counting counting;
        auto pool = make(kind);
        for (int i = 0; i < 20; ++i) {
            for (QBLThreadRunnable* task : Tasks{&exits, &cancels, &exits, &counting})
                ASSERT_EQ(1, pool->execute(task, kTestLimitMs)) << "kind " << kind;
            ASSERT_TRUE(eventually([&] { return counting.runs == i + 1; })) << "kind " << kind;
        }
    }
}

TEST_F(QBLThreadPoolTest, ExitRoutineMayWaitForThePool) {
    static QBLThreadPool* s_pool;
    static Ending s_ending;
    static Counting s_counting;
    Job leaving([] {
        const auto routine = [] {
            EXPECT_TRUE(eventually([] { return s_ending.runs == 1; }));
            EXPECT_EQ(1, s_pool->execute(&s_counting, kTestLimitMs));
            EXPECT_TRUE(eventually([] { return s_counting.runs == 1; }));
        };
        QBLThread::atExit(routine, 1);
        pthread_exit(nullptr);
    });
    QBLThreadPoolFixed fixed(1);
    QBLThreadPoolQueued queued(1, 0);
    for (QBLThreadPool* pool : Pools{&fixed, &queued}) {
        s_ending.runs = s_counting.runs = 0;
        s_pool = pool;
        for (QBLThreadRunnable* task : Tasks{&leaving, &s_ending})
            EXPECT_EQ(1, pool->execute(task, kTestLimitMs));
        EXPECT_TRUE(eventually([] { return s_counting.runs == 1; }));
    }
}

TEST_F(QBLThreadPoolTest, TasksDoNotInheritCancellationSettings) {
    QBLThreadPoolFixed fixed(1);
    QBLThreadPoolVariable variable(1, std::chrono::milliseconds(50), 1000);
    QBLThreadPoolQueued queued(1, 0);
    for (QBLThreadPool* pool : Pools{&fixed, &variable, &queued})
        for (int i = 0; i < 2; ++i) {
            int state = -1, type = -1;
            Gate done;
            Job setting([&] {
                // NOLINTNEXTLINE(concurrency-thread-canceltype-asynchronous): a task may do this
                pthread_setcanceltype(PTHREAD_CANCEL_ASYNCHRONOUS, &type);
                pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state);
                done.open();
            });
            ASSERT_EQ(1, pool->execute(&setting, kTestLimitMs));
            ASSERT_TRUE(done.wait());
            EXPECT_EQ(PTHREAD_CANCEL_ENABLE, state);
            EXPECT_EQ(PTHREAD_CANCEL_DEFERRED, type);
        }
}

TEST_F(QBLThreadPoolTest, DestructorRunsAcceptedTasksEvenIfWorkersEnd) {
    for (int kind : {1, 2}) {
        Ending ending;
        Counting counting;
        auto pool = make(kind);
        Job first([running = pool.get()] {
            while (running->getStopWork() == 0) QBLThread::yield();
            pthread_exit(nullptr);
        });
        for (QBLThreadRunnable* task : Tasks{&first, &first, &ending, &counting}) {
            EXPECT_EQ(1, pool->execute(task, 0)) << "kind " << kind;
            // The surviving worker must run the task.
            fault::failCall(fault::kThreadCreate, 0, EAGAIN);
        }
        fault::failCall(fault::kThreadCreate, 0, EAGAIN);
        fault::failCall(fault::kThreadBegin, 0, ENOMEM);
        pool.reset();
        EXPECT_EQ(1, ending.runs) << "kind " << kind;
        EXPECT_EQ(1, counting.runs) << "kind " << kind;
        EXPECT_TRUE(kind != 1 || fault::callFailed(fault::kThreadBegin));
        fault::reset();
    }
}

TEST_F(QBLThreadPoolTest, StopFlagWakesWaitingSubmittersAndLosesNoTask) {
    for (const char* kind : {"fixed", "queued", "queued, unfinished"}) {
        Gate gate;
        Blocking blocking(gate);
        Counting counting;
        std::unique_ptr<QBLThreadPool> pool;
        if (kind[0] == 'f')
            pool = std::make_unique<QBLThreadPoolFixed>(1);
        else
            pool = std::make_unique<QBLThreadPoolQueued>(1, 1, std::strlen(kind) < 7 ? 1 : 0);
        EXPECT_EQ(1, pool->execute(&blocking, QBLWaitForever));
        EXPECT_TRUE(eventually([&] { return blocking.started == 1; }));
        while (pool->execute(&blocking, 0) != 0) {  // fills the queue
        }
        std::atomic<int> refused{0};
        Workers submitters(3, [&] {
            try {
                pool->execute(&counting, QBLWaitForever);
            } catch (const QBLIllegalStateError&) {
                ++refused;
            }
        });
        QBLThread::sleep(5);  // gives the submitters time to block
        pool->setStopWork(1);
        EXPECT_TRUE(eventually([&] { return refused == 3; })) << kind;
        gate.open();
        submitters.join();
        pool.reset();
        EXPECT_EQ(0, counting.runs) << kind;
    }
    for (int round = 0; round < 60; ++round) {
        auto pool = make(round % 3);
        Counting counting;
        std::atomic<int> accepted{0};
        Workers submitters(3, [&] {
            try {
                for (;;) accepted += pool->execute(&counting, QBLWaitForever);
            } catch (const QBLIllegalStateError&) {
            }
        });
        EXPECT_TRUE(eventually([&] { return accepted > 20; }));
        pool->setStopWork(1);
        submitters.join();
        EXPECT_TRUE(eventually([&] { return counting.runs == accepted; }))
            << "kind " << round % 3 << ": tasks must run before the destructor is called";
    }
}

// A worker that spins never gives its processor away.
TEST_F(QBLThreadPoolTest, VariableWorkersSleepWhileIdleEvenWithoutAnIdleTime) {
    QBLThreadPoolVariable pool(1, 0, 0);
    const auto worker = qblSubmitFor(pool, QBLWaitForever, [] { return gettid(); }).get();
    const auto sleeps = [worker] {
        std::ifstream in("/proc/self/task/" + std::to_string(worker) + "/status");
        std::string word;
        long count = 0;
        while (in >> word && word != "voluntary_ctxt_switches:") continue;
        in >> count;
        return count;
    };
    const long before = sleeps();
    EXPECT_TRUE(eventually([&] { return sleeps() > before + 20; }));
}

TEST_F(QBLThreadPoolTest, QueuedWakesAWorkerThatIsAboutToBeIdle) {
    QBLThreadSemaphore done(0);
    Job posting([&done] { done.post(); });
    QBLThreadPoolQueued pool(1, 0);
    for (int i = 0; i < 30000; ++i) {
        for (volatile int delay = i % 300; delay > 0;) delay = delay - 1;
        ASSERT_EQ(1, pool.execute(&posting, 0));
        ASSERT_TRUE(done.boundedWait(5000)) << i << ": shorter than the interval of polls";
    }
}

TEST_F(QBLThreadPoolTest, QueuedLimitsItsQueueToTheCapacity) {
    Gate gate;
    Blocking blocking(gate);
    QBLThreadPoolQueued pool(1, 1);
    EXPECT_EQ(1, pool.execute(&blocking, 0));
    EXPECT_TRUE(eventually([&] { return blocking.started == 1; }));
    EXPECT_EQ(1, pool.execute(&blocking, 0));
    EXPECT_EQ(0, pool.execute(&blocking, 0));
    EXPECT_EQ(0, pool.execute(nullptr, 20ms));
    gate.open();
    EXPECT_EQ(1, pool.execute(&blocking, QBLWaitForever));
}

TEST_F(QBLThreadPoolTest, QueuedFinishesOrDropsQueuedTasksAsConfigured) {
    for (int finish : {0, 1}) {
        Gate gate;
        Blocking blocking(gate);
        Counting counting;
        auto pool = std::make_unique<QBLThreadPoolQueued>(1, 0, finish);
        EXPECT_EQ(1, pool->execute(&blocking, 0));
        EXPECT_TRUE(eventually([&] { return blocking.started == 1; }));
        for (int i = 0; i < 10; ++i) EXPECT_EQ(1, pool->execute(&counting, 0));
        QBLThreadPool* stopping = pool.get();
        Workers opener(1, [&] {
            EXPECT_TRUE(eventually([&] { return stopping->getStopWork() != 0; }));
            gate.open();
        });
        pool.reset();
        EXPECT_EQ(finish != 0 ? 10 : 0, counting.runs);
        EXPECT_EQ(1, blocking.ended);
    }
}

TEST_F(QBLThreadPoolTest, VariableReportsAFailedWorkerOnlyIfNoOtherCanRunTheTask) {
    Gate gate;
    Blocking blocking(gate);
    Counting counting;
    {
        QBLThreadPoolVariable pool(1, 1000, 1);
        fault::failCall(fault::kThreadCreate, 0, EAGAIN);
        QBL_EXPECT_THROW(pool.execute(&counting, 0), QBLThreadResourceError, nullptr);
        EXPECT_EQ(0U, pool.getWorkerCount());
        EXPECT_EQ(1, pool.execute(&blocking, 0));
        fault::failCall(fault::kThreadCreate, 0, EAGAIN);
        EXPECT_EQ(1, pool.execute(&counting, 0)) << "the busy worker runs it later";
        EXPECT_EQ(1U, pool.getWorkerCount());
        gate.open();
    }
    EXPECT_EQ(1, counting.runs);
}
