#include "QBLCore/FileLock/QBLFileLockRW.hpp"

#include <pthread.h>
#include <signal.h>

#include <mutex>
#include <shared_mutex>

#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/Threads/QBLThreadRWGuard.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

struct QBLFileLockRWTest : ::testing::Test {
    QBLFileLockRWTest() : lock(file) {
        path = tree.file("f");
        EXPECT_TRUE(file.open(path.c_str(), QBLFmFile::existing, 0));
    }
    /// Starts a process that holds the file's lock until it is killed. Returns when the process has
    /// the lock.
    std::unique_ptr<Child> holder(bool shared) {
        int ready[2];
        EXPECT_EQ(0, pipe(ready));
        auto child = std::make_unique<Child>([&] {
            QBLFmFile mine;
            if (!mine.open(path.c_str(), QBLFmFile::existing, 0)) return 1;
            QBLFileLockRW own(mine);
            shared ? own.readLock() : own.lock();
            if (write(ready[1], "x", 1) != 1) return 1;
            for (;;) pause();
        });
        char c;
        EXPECT_EQ(1, read(ready[0], &c, 1));
        close(ready[0]);
        close(ready[1]);
        return child;
    }
    /// Returns the lock that another process can get: 2 for exclusive, 1 for shared, 0 for none.
    int othersMay() {
        return inChild([this] {
            QBLFmFile mine;
            mine.open(path.c_str(), QBLFmFile::existing, 0);
            QBLFileLockRW own(mine);
            return own.tryLock() != 0 ? 2 : own.tryReadLock();
        });
    }

    TempTree tree;
    std::string path;
    QBLFmFile file;
    QBLFileLockRW lock;
};

}  // namespace

TEST_F(QBLFileLockRWTest, ExcludesAndSharesBetweenProcesses) {
    EXPECT_EQ(2, othersMay());
    for (const int shared : {0, 1}) {
        QBLThreadRWGuard guard(lock, 1 - shared);
        EXPECT_EQ(shared, othersMay());
    }
    EXPECT_EQ(2, othersMay());
    for (const bool shared : {false, true}) {
        auto other = holder(shared);
        EXPECT_EQ(0, lock.tryLock());
        EXPECT_EQ(shared ? 1 : 0, lock.tryReadLock());
        lock.unlock();
    }
}

TEST_F(QBLFileLockRWTest, BoundedLocksWaitUntilTheTimeIsOverOrTheLockIsFree) {
    auto other = holder(true);
    EXPECT_FALSE(lock.boundedLock(0) || lock.boundedLock(3));
    EXPECT_FALSE(std::unique_lock(lock, std::chrono::milliseconds(2)));
    EXPECT_FALSE(std::unique_lock(lock, std::chrono::steady_clock::now()));
    EXPECT_TRUE(std::shared_lock(lock, std::chrono::milliseconds(-1)));
    EXPECT_TRUE(std::shared_lock(lock, std::chrono::steady_clock::now()));
    EXPECT_TRUE(!std::unique_lock(lock, std::try_to_lock) &&
                std::shared_lock(lock, std::try_to_lock));
    for (const unsigned long ms : {kTestLimitMs, QBLWaitForever, ~0UL - 1}) {
        Workers waiter(1, [&] { EXPECT_TRUE(lock.boundedLock(ms)); });
        other.reset();
        waiter.join();
        EXPECT_EQ(0, othersMay());
        lock.unlock();
        other = holder(false);
    }
}

TEST_F(QBLFileLockRWTest, WaitsThroughSignalsUntilTheOtherProcessIsGone) {
    auto other = holder(false);
    struct sigaction nothing {};
    nothing.sa_handler = [](int) {};  // without SA_RESTART, so that system calls fail with EINTR
    struct sigaction before;
    sigaction(SIGUSR1, &nothing, &before);
    std::atomic<bool> locked{false};
    std::atomic<pthread_t> waiter{0};
    Workers thread(1, [&] {
        waiter = pthread_self();
        lock.lock();
        locked = true;
    });
    EXPECT_TRUE(eventually([&] { return waiter != 0; }));
    for (int i = 0; i < 20; ++i) {
        pthread_kill(waiter, SIGUSR1);
        usleep(1000);
    }
    EXPECT_FALSE(locked);
    other.reset();
    thread.join();
    EXPECT_TRUE(locked);
    EXPECT_EQ(0, othersMay());
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(QBLFileLockRWTest, ReportsWhyLockingFails) {
    QBLFmFile reading;
    ASSERT_TRUE(reading.open(path.c_str(), QBLFmFile::existing, 1));
    const char text[] =
        "Error obtaining a file lock. The error message retrieved from underlining system is: "
        "Bad file descriptor.";
    QBLFileLockRW own(reading);
    QBL_EXPECT_THROW(own.lock(), QBLRuntimeError, text);
    QBL_EXPECT_THROW(static_cast<void>(own.boundedLock(1)), QBLRuntimeError, text);
    EXPECT_EQ(0, own.tryLock());
    EXPECT_NO_THROW(own.readLock());
    reading.close();
    QBL_EXPECT_THROW(own.readLock(), QBLRuntimeError, text);
    QBL_EXPECT_THROW(own.unlock(), QBLRuntimeError,
                     "Error releasing a file lock. The error message retrieved from underlining "
                     "system is: Bad file descriptor.");
    try {
        own.unlock();
    } catch (QBLThrowable& e) {
        EXPECT_EQ(
            "QBLRuntimeError: QBL_RETHROW: QBLFileLockRW::unlock\n"
            "QBLRuntimeError: QBL_THROW: \n",
            traceOf(e));
    }
}

TEST_F(QBLFileLockRWTest, AssertsThatItHasAFile) {
    QBLFileLockRW none;
    const char text[] = "QBL_ASSERT(m_file != NULL);";
    QBL_EXPECT_THROW(none.lock(), QBLAssertError, text);
    QBL_EXPECT_THROW(none.readLock(), QBLAssertError, text);
    QBL_EXPECT_THROW(none.tryLock(), QBLAssertError, text);
    QBL_EXPECT_THROW(none.tryReadLock(), QBLAssertError, text);
    QBL_EXPECT_THROW(static_cast<void>(none.boundedReadLock(1)), QBLAssertError, text);
    QBL_EXPECT_THROW(none.unlock(), QBLAssertError, text);
    none.setFile(&file);
    EXPECT_EQ(1, none.tryLock());
    EXPECT_EQ(&file, none.getFile());
}
