#include "QBLCore/Threads/QBLSignalWaiter.hpp"

#include <unistd.h>

#include <cerrno>

#include "tests/faults/Injector.hpp"
#include "tests/support/Cancellable.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

bool isBlocked(int signal) {
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    return sigismember(&mask, signal) == 1;
}

}  // namespace

TEST(QBLSignalWaiterTest, TakesBlockedSignalsAndRestoresTheMask) {
    std::signal(SIGHUP, SIG_IGN);
    {
        QBLSignalWaiter outer({SIGUSR1, SIGHUP});
        {
            QBLSignalWaiter inner({SIGUSR1, SIGUSR2});
            Workers sender(1, [] { kill(getpid(), SIGUSR2); });
            EXPECT_EQ(SIGUSR2, inner.wait());
            kill(getpid(), SIGUSR1);
            EXPECT_EQ(SIGUSR1, outer.timedWait(0));
            EXPECT_EQ(0, inner.timedWait(1)) << "only one waiter gets a signal";
        }
        EXPECT_TRUE(isBlocked(SIGUSR1)) << "the outer waiter blocks it";
        EXPECT_FALSE(isBlocked(SIGUSR2));
        kill(getpid(), SIGHUP);
        EXPECT_EQ(0, outer.timedWait(std::chrono::microseconds(1))) << "stays ignored";
    }
    EXPECT_FALSE(isBlocked(SIGUSR1));
    std::signal(SIGHUP, SIG_DFL);
}

TEST(QBLSignalWaiterTest, CancelledWaitTakesNothing) {
    if (kSanitizer) GTEST_SKIP() << "the sanitizer keeps the stack of a cancelled thread poisoned";
    QBLSignalWaiter waiter({SIGUSR1});
    Cancellable thread([&waiter] { waiter.wait(); });
    thread.cancel();
    EXPECT_TRUE(thread.join());
    kill(getpid(), SIGUSR1);
    EXPECT_EQ(SIGUSR1, waiter.timedWait(kTestLimitMs));
}

TEST(QBLSignalWaiterTest, LeavesTheMaskUnchangedWhenItThrows) {
    for (const int signal : {-1, 0, 32, 1000, SIGKILL, SIGSTOP, SIGSEGV})
        QBL_EXPECT_THROW(QBLSignalWaiter({SIGUSR1, signal}), QBLIllegalArgumentError,
                         "QBLSignalWaiter::QBLSignalWaiter: no waiter can take this signal",
                         signal);
    fault::failCall(fault::kSignalFd, 0, EMFILE);
    QBL_EXPECT_THROW(QBLSignalWaiter(), QBLThreadResourceError,
                     "QBLSignalWaiter::QBLSignalWaiter: the system has no descriptor");
    EXPECT_FALSE(isBlocked(SIGUSR1) || isBlocked(SIGTERM));
}
