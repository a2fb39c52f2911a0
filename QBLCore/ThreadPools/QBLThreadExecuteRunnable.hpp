#ifndef QBLCORE_THREADPOOLS_QBLTHREADEXECUTERUNNABLE_HPP
#define QBLCORE_THREADPOOLS_QBLTHREADEXECUTERUNNABLE_HPP

#include "QBLCore/Frame/QBLExport.h"

class QBLThreadRunnable;

/// Something that runs tasks for others.
///
/// Threads: execute() for any thread; derived classes have to allow that.
class QBL_API QBLThreadExecuteRunnable {
public:
    QBLThreadExecuteRunnable() = default;
    QBLThreadExecuteRunnable(const QBLThreadExecuteRunnable&) = delete;
    QBLThreadExecuteRunnable& operator=(const QBLThreadExecuteRunnable&) = delete;
    virtual ~QBLThreadExecuteRunnable();

    /// Hands over a task to be run on another thread. The task stays the caller's, who may
    /// destroy it once its run() has ended; an exception that leaves run() is dropped.
    /// @param timeout  ms to wait until the task can be accepted; 0 does not wait
    /// @return 1 when the task was accepted, 0 when it was not.
    virtual int execute(QBLThreadRunnable* task, unsigned long timeout = 0) = 0;
};

#endif
