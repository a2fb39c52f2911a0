#ifndef QBLCORE_THREADPOOLS_QBLTHREADEXECUTERUNNABLE_HPP
#define QBLCORE_THREADPOOLS_QBLTHREADEXECUTERUNNABLE_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Threads/QBLMilliseconds.hpp"

class QBLThreadRunnable;

/// Interface of the classes that run tasks.
///
/// Threads: any thread may call execute(); derived classes must allow that.
class QBL_API QBLThreadExecuteRunnable {
public:
    QBLThreadExecuteRunnable() = default;
    QBLThreadExecuteRunnable(const QBLThreadExecuteRunnable&) = delete;
    QBLThreadExecuteRunnable& operator=(const QBLThreadExecuteRunnable&) = delete;
    virtual ~QBLThreadExecuteRunnable();

    /// Hands over a task to run on another thread. The caller still owns the task, and may destroy
    /// the task after its run() has ended. An exception that leaves run() is dropped.
    /// @param timeout  milliseconds to wait until the task can be accepted; 0 does not wait
    /// @return 1 if the task was accepted, otherwise 0.
    virtual int execute(QBLThreadRunnable* task, unsigned long timeout = 0) = 0;
    int execute(QBLThreadRunnable* task, QBLMilliseconds timeout) {
        return execute(task, timeout.count());
    }
};

#endif
