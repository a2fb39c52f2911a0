#ifndef QBLCORE_THREADS_QBLSIGNALWAITER_HPP
#define QBLCORE_THREADS_QBLSIGNALWAITER_HPP

#include <csignal>
#include <initializer_list>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLTimeout.hpp"

/// Blocks signals and passes them to a thread that waits for them, so that a program needs no
/// signal handler.
///
/// The constructor blocks the signals in its own thread, and every thread that is started later
/// inherits this. So construct the object before any other thread starts, also before
/// qblCoreInitialize(). A thread that does not block a signal may receive it, and the signal then
/// acts as if there were no waiter.
///
/// If several threads wait, only one of them receives a signal. A signal that is sent again before
/// a thread has taken it is received once. A signal that the process ignores when the object is
/// constructed stays ignored, as SIGINT does in a program that a shell script starts in the
/// background.
///
/// A program that the process starts inherits the blocked signals: unblock them between fork(2) and
/// exec(3), or with posix_spawnattr_setsigmask(3).
///
/// Destroy waiters for the same signal in the reverse order of their construction; otherwise the
/// first one unblocks the signal while another one still exists.
///
/// Threads: any thread may wait. The thread that constructs the object must also destroy it.
///
///     QBLSignalWaiter stop;  // SIGINT and SIGTERM
///     qblCoreInitialize();
///     ...                    // starts threads
///     while (stop.timedWait(1000) == 0) everySecond();
class QBL_API QBLSignalWaiter {
public:
    /// @throws QBLIllegalArgumentError with the number of a signal that does not exist, cannot be
    ///     blocked, or reports a fault of the program (SIGSEGV, SIGBUS, SIGFPE, SIGILL);
    ///     QBLThreadResourceError if the process has too many descriptors. After an error, the
    ///     thread's mask is unchanged.
    explicit QBLSignalWaiter(std::initializer_list<int> signals = {SIGINT, SIGTERM});
    /// Unblocks the signals that the constructor blocked. A signal that arrived but was not taken
    /// then acts as if there were no waiter: by default, SIGTERM ends the process.
    ~QBLSignalWaiter();
    QBLSignalWaiter(const QBLSignalWaiter&) = delete;
    QBLSignalWaiter& operator=(const QBLSignalWaiter&) = delete;

    /// Waits for a signal, and takes it. The wait is a cancellation point; a cancelled thread takes
    /// no signal.
    /// @return the number of the signal
    /// @throws QBLThreadResourceError
    int wait();
    /// @return 0 if the time ran out
    [[nodiscard]] int timedWait(unsigned long ms);
    [[nodiscard]] int timedWait(QBLMilliseconds time) { return timedWait(time.count()); }

    /// Returns a descriptor for poll(2) and epoll(7): it is readable while timedWait(0) would take
    /// a signal. The object owns it; do not read from it.
    int getDescriptor() const { return m_iDescriptor; }

private:
    int m_iDescriptor;
    sigset_t m_blocked;  // the signals that the destructor unblocks
};

#endif
