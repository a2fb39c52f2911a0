#ifndef QBLCORE_THREADS_QBLTHREADRUNNABLE_HPP
#define QBLCORE_THREADS_QBLTHREADRUNNABLE_HPP

#include "QBLCore/Frame/QBLExport.h"

/// A piece of work for a thread or a thread pool.
///
/// Threads: run() is called by the thread that does the work; by several at a time, if the runnable
/// was handed over more than once.
class QBL_API QBLThreadRunnable {
public:
    QBLThreadRunnable() = default;
    virtual ~QBLThreadRunnable();

    /// Runs on the thread that does the work. An exception that leaves it ends the work and is
    /// dropped: keep an error in a QBLDeferredThrowable to show it elsewhere.
    virtual void run() = 0;
};

#endif
