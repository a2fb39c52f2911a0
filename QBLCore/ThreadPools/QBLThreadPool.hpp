#ifndef QBLCORE_THREADPOOLS_QBLTHREADPOOL_HPP
#define QBLCORE_THREADPOOLS_QBLTHREADPOOL_HPP

#include <atomic>

#include "QBLCore/ThreadPools/QBLThreadExecuteRunnable.hpp"
#include "QBLCore/Threads/QBLTimeout.hpp"

/// What the thread pools share. A pool runs from its construction until its destructor, which
/// sets the stop-work flag, lets the workers end and waits for them. A task may end its thread, by
/// pthread_exit or a cancellation: its worker goes on with another one.
///
/// Threads: execute() and the flag for any thread; nobody may call a pool that is being
/// destroyed.
class QBL_API QBLThreadPool : public QBLThreadExecuteRunnable {
public:
    ~QBLThreadPool() override;

    /// Non-zero once execute() refuses tasks with QBLIllegalStateError.
    int getStopWork() const { return m_iStopWork.load(); }
    /// Setting it stops the pool's work before its destruction: calls of execute() that wait for a
    /// worker or for room throw QBLIllegalStateError, and workers end as they notice. It is not
    /// meant to be taken back.
    void setStopWork(int stop);

protected:
    QBLThreadPool();

private:
    // Sequentially consistent: a worker offers itself and then reads the flag, while a
    // destructor sets the flag and then looks for workers that offer themselves.
    std::atomic<int> m_iStopWork;
};

#endif
