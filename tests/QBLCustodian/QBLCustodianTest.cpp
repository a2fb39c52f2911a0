#include "QBLCore/QBLCustodian/QBLCustodian.hpp"

#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <regex>
#include <stdexcept>

#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/Threads/QBLThreadProcess.h"
#include "tests/faults/Injector.hpp"
#include "tests/support/Cancellable.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

struct Task : QBLCustodianTask {
    explicit Task(std::function<int(int)> body = [](int) { return 0; }) : m_body(std::move(body)) {}
    int doIt(int terminating) override {
        ++calls;
        last = last + terminating;
        return m_body(terminating);
    }
    std::atomic<int> calls{0}, last{0};

private:
    std::function<int(int)> m_body;
};

struct QBLCustodianTest : ::testing::Test {
    void SetUp() override {
        QBLCustodian::setSchedule(1);
        ASSERT_EQ(0, qblCoreInitialize());
    }
    void TearDown() override { EXPECT_EQ(stopped ? -2 : 0, qblCoreTerminate()); }
    void stop() {
        stopped = true;
        EXPECT_EQ(0, qblCoreTerminate());
    }
    bool stopped = false;
};

}  // namespace

TEST_F(QBLCustodianTest, CallsTheNewestBatchFirstInItsOrder) {
    std::mutex lock;
    std::string record;  // the letters that tasks have written, in order; guarded by lock
    const auto written = [&] {
        const std::lock_guard hold(lock);
        return record;
    };
    Gate begin, registered;
    Task first([&](int) {
        begin.open();
        registered.wait();
        return 1;
    });
    EXPECT_TRUE(QBLCustodian::registerTask(&first));
    ASSERT_TRUE(begin.wait())
        << "the first task holds its pass, so that the next one starts with A, B and C";
    std::deque<Task> tasks;
    const auto add = [&](char c) {
        tasks.emplace_back([&, c](int) {
            const std::lock_guard hold(lock);
            record += c;
            return 0;
        });
        EXPECT_TRUE(QBLCustodian::registerTask(&tasks.back()));
    };
    for (const char c : {'A', 'B', 'C'}) add(c);
    registered.open();
    EXPECT_TRUE(eventually([&] { return written().size() >= 6; }));
    add('D');
    EXPECT_TRUE(eventually([&] { return written().find("DABCDABC") != std::string::npos; }));
    EXPECT_EQ("ABCABC", written().substr(0, 6));
    stop();
    for (const Task& task : tasks) EXPECT_EQ(1, task.last) << "the last pass calls each task once";
    EXPECT_EQ("DABC", record.substr(record.size() - 4));
    EXPECT_EQ(1, first.calls) << "a finished task is dropped";
}

TEST_F(QBLCustodianTest, StopsWithoutWaitingButCallsEveryTaskOnce) {
    stop();
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 200; ++i) {
        QBLCustodian::setSchedule(60000);
        ASSERT_EQ(0, qblCoreInitialize());
        Task task;
        EXPECT_TRUE(QBLCustodian::registerTask(&task));
        ASSERT_EQ(0, qblCoreTerminate());
        EXPECT_EQ(1, task.last);
        EXPECT_FALSE(QBLCustodian::registerTask(&task));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30))
        << "a lost signal delays the stop by a minute";
    EXPECT_FALSE(QBLCustodian::registerTask(nullptr));
    EXPECT_FALSE(QBLCustodian::deRegisterTask(nullptr));
}

TEST_F(QBLCustodianTest, DeregistrationWaitsForThePass) {
    Gate inside;
    std::atomic<bool> done{false};
    Task slow([&](int) {
        inside.open();
        QBLThread::sleep(20);
        done = true;
        return 0;
    });
    Task waiting;
    EXPECT_TRUE(QBLCustodian::registerTask(&slow));
    ASSERT_TRUE(inside.wait());
    EXPECT_TRUE(QBLCustodian::registerTask(&waiting));
    EXPECT_TRUE(QBLCustodian::registerTask(nullptr));
    EXPECT_TRUE(QBLCustodian::deRegisterTask(&slow));
    EXPECT_TRUE(done);
    const int calls = slow.calls;
    EXPECT_TRUE(eventually([&] { return waiting.calls > 2; }));
    EXPECT_EQ(calls, slow.calls);
    EXPECT_FALSE(QBLCustodian::deRegisterTask(&slow));
    EXPECT_TRUE(QBLCustodian::deRegisterTask(&waiting));
}

TEST_F(QBLCustodianTest, StopCompletesEvenIfItsThreadIsCancelled) {
    Gate last, cancelled;
    Task task([&](int terminating) {
        if (terminating != 0) last.open(), cancelled.wait();
        return 0;
    });
    EXPECT_TRUE(QBLCustodian::registerTask(&task));
    stopped = true;
    int result = -1;
    Cancellable thread([&result] { result = qblCoreTerminate(); });
    EXPECT_TRUE(last.wait());
    thread.cancel();
    cancelled.open();
    thread.join();
    EXPECT_EQ(0, result);
}

TEST_F(QBLCustodianTest, TaskThatEndsItsThreadAffectsNoOtherTask) {
    Task before, ends([](int) -> int { pthread_exit(nullptr); }), after;
    for (Task* task : {&before, &ends, &after}) EXPECT_TRUE(QBLCustodian::registerTask(task));
    EXPECT_TRUE(eventually([&] { return before.calls > 3 && after.calls > 3; }));
    EXPECT_TRUE(QBLCustodian::deRegisterTask(&before) && QBLCustodian::registerTask(&before));
    stop();
    for (const Task* task : {&before, &ends, &after}) EXPECT_EQ(1, task->last);
}

TEST_F(QBLCustodianTest, NewScheduleAppliesToTheCurrentWait) {
    EXPECT_EQ(0, qblCoreTerminate());
    QBLCustodian::setSchedule(60000);
    ASSERT_EQ(0, qblCoreInitialize());
    Task task;
    EXPECT_TRUE(QBLCustodian::registerTask(&task));
    for (int i = 0; i < 100; ++i) {
        QBLCustodian::setSchedule(std::chrono::seconds(50));
        QBLThread::yield();
    }
    EXPECT_EQ(0, task.calls) << "the pass starts too early";
    QBLCustodian::setSchedule(1);
    EXPECT_TRUE(eventually([&] { return task.calls > 1; }));
    EXPECT_TRUE(QBLCustodian::deRegisterTask(&task));
}

TEST_F(QBLCustodianTest, TasksMayRegisterTasksButNotDeregisterRunningOnes) {
    Task other;
    std::atomic<int> registered{-1}, fresh{-1}, running{-1};
    std::optional<Task> task;
    task.emplace([&](int) {
        running = QBLCustodian::deRegisterTask(&*task);
        registered = QBLCustodian::registerTask(&other);
        fresh = QBLCustodian::deRegisterTask(&other);
        return 1;
    });
    EXPECT_TRUE(QBLCustodian::registerTask(&*task));
    EXPECT_TRUE(eventually([&] { return fresh != -1; }));
    EXPECT_TRUE(running == 0 && registered == 1 && fresh == 1);
    stop();
}

TEST_F(QBLCustodianTest, RefusesADuplicateTaskAndReportsAFailedThreadStart) {
    // Starts only the custodian. If the whole library starts, another service registers a task, and
    // the custodian's thread already runs.
    stop();
    ASSERT_EQ(0, qblThreadProcessInitialize("test"));
    ASSERT_TRUE(QBLCustodian::initialize());
    Task task;
    fault::failCall(fault::kThreadCreate, 0, EAGAIN);
    EXPECT_FALSE(QBLCustodian::registerTask(&task));
    fault::reset();
    EXPECT_TRUE(QBLCustodian::registerTask(&task)) << "the second attempt succeeds";
    EXPECT_TRUE(eventually([&] { return task.calls > 0; }));
    QBL_EXPECT_THROW(QBLCustodian::registerTask(&task), QBLAssertError,
                     "QBL_ASSERT(task != *iter);");
    Gate inside, twice;
    Task blocking([&](int) {
        inside.open();
        twice.wait();
        return 1;
    });
    Task waiting;
    EXPECT_TRUE(QBLCustodian::registerTask(&blocking));
    ASSERT_TRUE(inside.wait());
    EXPECT_TRUE(QBLCustodian::registerTask(&waiting));
    QBL_EXPECT_THROW(QBLCustodian::registerTask(&waiting), QBLAssertError,
                     "QBL_ASSERT(task != *iterJobs);");
    fault::failAllocation(0);
    Task unlucky;
    QBL_EXPECT_THROW(QBLCustodian::registerTask(&unlucky), QBLOutOfMemoryError, nullptr);
    twice.open();
    QBLCustodian::terminate();
    EXPECT_EQ(0, qblThreadProcessTerminate("test"));
}

TEST_F(QBLCustodianTest, SurvivesRegistrationsFromManyThreadsDuringTheStop) {
    for (int round = 0; round < 5; ++round) {
        std::atomic<int> turns{0};
        Workers workers(4, [&] {
            for (int i = 0; i < 300; ++i, ++turns) {
                Task task;  // may be destroyed after deRegisterTask(), whatever it returns
                if (QBLCustodian::registerTask(&task)) QBLCustodian::deRegisterTask(&task);
            }
        });
        EXPECT_TRUE(eventually([&] { return turns > 300; }));
        EXPECT_EQ(0, qblCoreTerminate());
        EXPECT_EQ(0, qblCoreInitialize());
        workers.join();
    }
}

TEST_F(QBLCustodianTest, IsNotInheritedByAForkedProcess) {
    if (kThreadSanitizer) GTEST_SKIP() << "the sanitizer starts no thread in a forked process";
    Task task, other;
    EXPECT_TRUE(QBLCustodian::registerTask(&task));
    EXPECT_TRUE(eventually([&] { return task.calls > 0; }));
    EXPECT_EQ(0, inChild([&other] {
                  if (QBLCustodian::registerTask(&other) || qblCoreTerminate() != 0) return 1;
                  if (qblCoreInitialize() != 0 || !QBLCustodian::registerTask(&other)) return 2;
                  return qblCoreTerminate() == 0 && other.last == 1 ? 0 : 3;
              }));
    stop();
}

TEST(QBLCustodianScheduleTest, ScheduleIsFrozenAtZeroAndAtAllOnes) {
    for (const unsigned long frozen : {0UL, ~0UL, 0xFFFFFFFFUL}) {
        const int status = inChild([frozen] {
            const unsigned long before = QBLCustodian::getSchedule();
            if (QBLCustodian::setSchedule(frozen) != before) return 1;
            if (QBLCustodian::setSchedule(5) != frozen) return 2;
            if (QBLCustodian::getSchedule() != frozen) return 3;
            if (qblCoreInitialize() != 0) return 4;
            Task task;
            if (!QBLCustodian::registerTask(&task)) return 5;
            if (frozen == 0) {
                while (task.calls < 100) QBLThread::yield();
                for (int i = 0; i < 100; ++i)
                    if (!QBLCustodian::deRegisterTask(&task) || !QBLCustodian::registerTask(&task))
                        return 6;
            }
            if (qblCoreTerminate() != 0) return 7;
            return task.last == 1 ? 0 : 8;
        });
        EXPECT_EQ(0, status) << frozen;
    }
}

TEST(QBLCustodianFailureTest, LogsTheErrorOfATaskAndEndsTheProcess) {
    const struct {
        std::function<void()> thrower;
        std::string what, text;
    } table[] = {{[] { QBL_THROW(QBLIllegalStateError(7, "why")); }, "QBLThrowable",
                  "<Exception Name=\"QBLIllegalStateError\" Error=\"7\" Severity=\"Fatal\">.*why.*"
                  "</Exception>"},
                 {[] { throw std::bad_alloc(); }, "CSTD_STD_NAME::bad_alloc Exception", ""},
                 {[] { throw std::runtime_error("what"); }, "C\\+\\+ Exception", "what"},
                 {[] { throw 1; }, "Unknown", "QBLCustodian catch \\(...\\)"},
                 {[] { pthread_cancel(pthread_self()), throw std::runtime_error("nor cancelled"); },
                  "C\\+\\+ Exception", "nor cancelled"}};
    for (const auto& row : table) {
        TempTree tree;
        tree.dir("logs");
        const std::string work = tree.dir("work");
        const int status = inChild([&] {
            QBLFmDir::setEffectiveWorkingDir(work.c_str());
            QBLCustodian::setSchedule(1);
            qblCoreInitialize();
            Task task([&](int) { return row.thrower(), 0; });
            QBLCustodian::registerTask(&task);
            QBLThread::sleep(kTestLimitMs);
            return 1;
        });
        EXPECT_EQ(327 % 256, status);
        std::list<std::string> names;
        QBLFmDir::readDir(tree("logs").c_str(), &names, "qbl_error_*.log", nullptr, nullptr);
        ASSERT_EQ(1U, names.size()) << row.what;
        const std::string text = tree.text("logs/" + names.front());
        const std::regex wanted("[^\t]*\tQBLCustodian Caught " + row.what + " Error\n<-\n" +
                                row.text + "\n->\n\n");
        EXPECT_TRUE(std::regex_match(text, wanted)) << text;
    }
}
