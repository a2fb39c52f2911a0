#ifndef QBLCORE_THREADS_QBLTHREADRUNNABLE_HPP
#define QBLCORE_THREADS_QBLTHREADRUNNABLE_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// A piece of work for a thread or a thread pool.
///
/// Threads: the thread that does the work calls run(). If the runnable was handed over more than
/// once, several threads may call run() at the same time.
class QBL_API QBLThreadRunnable {
public:
    QBLThreadRunnable() = default;
    virtual ~QBLThreadRunnable();

    /// Does the work. An exception that leaves run() ends the work and is dropped. Keep an error in
    /// a QBLDeferredThrowable to throw it elsewhere.
    virtual void run() = 0;
};

#endif
