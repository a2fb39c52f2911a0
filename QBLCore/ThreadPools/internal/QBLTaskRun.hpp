#ifndef QBLCORE_THREADPOOLS_INTERNAL_QBLTASKRUN_HPP
#define QBLCORE_THREADPOOLS_INTERNAL_QBLTASKRUN_HPP

#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/internal/QBLNoCancel.hpp"
#include "TavThread/internal/TavContain.hpp"

/// Stack of the workers of the fixed and the variable pool, in bytes.
constexpr unsigned long kPoolStackSize = 4096000;

/// Runs a task, if it is one, on a worker. Whatever it throws is dropped, except the end of the
/// thread. Workers run under a QBLNoCancel, which is lifted here: a cancellation ends the worker in
/// a task or right after it, and never between taking a task and running it.
inline void qblRunTask(QBLThreadRunnable* task) {
    if (task == nullptr) return;
    const QBLMayCancel mayCancel;
    tavContain([task] { task->run(); });
    pthread_testcancel();
}

/// Runs what is left in a pool's queue when there are no workers any more: each task on a thread of
/// its own, which it may end, or on the calling one if none can be made.
inline void qblRunLeft(QBLSentinelQueue<QBLThreadRunnable*>& tasks) {
    QBLThreadRunnable* task = nullptr;
    while (tasks.get(task, 0) && task != nullptr) {
        QBLThread last(task, kPoolStackSize);
        if (!tavContain([&last] { last.start(); })) tavContain([task] { task->run(); });
    }
}

#endif
