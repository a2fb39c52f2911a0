#ifndef QBLCORE_THREADPOOLS_QBLTHREADPOOL_HPP
#define QBLCORE_THREADPOOLS_QBLTHREADPOOL_HPP

#include <atomic>

#include "QBLCore/ThreadPools/QBLThreadExecuteRunnable.hpp"
#include "QBLCore/Threads/QBLTimeout.hpp"

/// Base of the thread pools. A pool works from its construction until its destructor. The
/// destructor sets the stop-work flag, lets the workers end and waits for them. A task may end its
/// thread, by pthread_exit or a cancellation. The worker that ran the task then continues with
/// another thread.
///
/// Threads: any thread may call execute() and use the flag. While a pool is being destroyed, no
/// thread may use it except its own tasks, whose calls of execute() throw QBLIllegalStateError.
class QBL_API QBLThreadPool : public QBLThreadExecuteRunnable {
public:
    ~QBLThreadPool() override;

    /// Returns the stop-work flag. If it is not 0, execute() refuses tasks with
    /// QBLIllegalStateError.
    int getStopWork() const { return m_iStopWork.load(); }
    /// Sets the stop-work flag. A value other than 0 stops the pool's work before its destruction.
    /// Calls of execute() that wait for a worker or for room throw QBLIllegalStateError, and
    /// workers end when they notice the flag. Do not clear the flag again.
    void setStopWork(int stop);

protected:
    QBLThreadPool();

private:
    // Sequentially consistent: a worker offers itself, then reads the flag. A destructor sets the
    // flag, then looks for workers that have offered themselves.
    std::atomic<int> m_iStopWork;
};

#endif
