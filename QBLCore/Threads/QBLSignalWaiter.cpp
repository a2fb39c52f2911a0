#include "QBLCore/Threads/QBLSignalWaiter.hpp"

#include <poll.h>
#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>

#include "QBLCore/Base/QBLCloseQuietly.hpp"
#include "QBLCore/Base/QBLNoCancel.hpp"
#include "QBLCore/Exceptions/QBLIllegalArgumentError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Threads/shared/QBLLayerResult.hpp"

namespace {

const char kBadSignal[] = "QBLSignalWaiter::QBLSignalWaiter: no waiter can take this signal";
const char kNoDescriptor[] = "QBLSignalWaiter::QBLSignalWaiter: the system has no descriptor";
const char kWait[] = "QBLSignalWaiter::wait: the system cannot wait";

using Clock = std::chrono::steady_clock;

/// A fault of the program ends the process even if its signal is blocked.
bool mayWaitFor(int signal) {
    for (const int refused : {SIGKILL, SIGSTOP, SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        if (signal == refused) return false;
    return true;
}

bool isIgnored(int signal) {
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && (action.sa_flags & SA_SIGINFO) == 0 &&
           action.sa_handler == SIG_IGN;
}

/// Takes a signal without waiting. Returns 0 if none has arrived, or if another thread was faster.
int takeSignal(int descriptor) {
    signalfd_siginfo taken;
    const QBLNoCancel noCancel;  // a cancelled read(2) might lose the signal
    for (;;) {
        const ssize_t size = read(descriptor, &taken, sizeof taken);
        if (size == static_cast<ssize_t>(sizeof taken)) return static_cast<int>(taken.ssi_signo);
        if (size >= 0 || errno == EAGAIN) return 0;
        if (errno != EINTR) qblThrowThreadResource(QBL_HERE, kWait);
    }
}

/// Returns the time for poll(2), rounded up; poll(2) may end before a long deadline.
int timeUntil(Clock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, INT_MAX));
}

}  // namespace

QBLSignalWaiter::QBLSignalWaiter(std::initializer_list<int> signals) {
    sigset_t wanted, before;
    sigemptyset(&wanted);
    for (const int signal : signals) {
        if (!mayWaitFor(signal) || sigaddset(&wanted, signal) != 0)
            QBL_THROW(QBLIllegalArgumentError(signal, kBadSignal));
        if (isIgnored(signal)) sigdelset(&wanted, signal);
    }
    m_iDescriptor = signalfd(-1, &wanted, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_iDescriptor < 0) qblThrowThreadResource(QBL_HERE, kNoDescriptor);
    pthread_sigmask(SIG_BLOCK, &wanted, &before);
    m_blocked = wanted;
    for (const int signal : signals)
        if (sigismember(&before, signal) == 1) sigdelset(&m_blocked, signal);
}

QBLSignalWaiter::~QBLSignalWaiter() {
    qblCloseQuietly(m_iDescriptor);
    pthread_sigmask(SIG_UNBLOCK, &m_blocked, nullptr);
}

int QBLSignalWaiter::wait() { return timedWait(QBLWaitForever); }

int QBLSignalWaiter::timedWait(unsigned long ms) {
    const unsigned limit = layerTimeout(ms);
    const bool forever = limit == TAVTHREAD_INFINITE;
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(limit);
    for (;;) {
        if (const int signal = takeSignal(m_iDescriptor)) return signal;
        const int left = forever ? -1 : timeUntil(deadline);
        if (left == 0) return 0;
        pollfd file = {m_iDescriptor, POLLIN, 0};
        if (poll(&file, 1, left) < 0 && errno != EINTR) qblThrowThreadResource(QBL_HERE, kWait);
    }
}
