#ifndef QBLCORE_THREADPOOLS_INTERNAL_QBLTASKRUN_HPP
#define QBLCORE_THREADPOOLS_INTERNAL_QBLTASKRUN_HPP

#include "QBLCore/Base/QBLNoCancel.hpp"
#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "TavThread/shared/TavContain.hpp"

/// Stack of the workers of the fixed and the variable pool, in bytes.
constexpr unsigned long kPoolStackSize = 4096000;

/// Runs a task, if it is one, on a worker. Whatever it throws is dropped, except the end of the
/// thread. A cancellation ends the worker in a task or right after it, never between taking a task
/// and running it: nothing on the way is a place where it may take effect. What a task does to the
/// way its thread can be cancelled ends with it.
inline void qblRunTask(QBLThreadRunnable* task) {
    if (task == nullptr) return;
    tavContain([task] { task->run(); });
    int before = 0;
    pthread_setcanceltype(PTHREAD_CANCEL_DEFERRED, &before);
    pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &before);
    pthread_testcancel();
}

/// QBLSentinelQueue::get() for workers. A cancellation is put off, which could swallow a wake-up;
/// as this costs something it is done only to wait.
inline bool qblTakeTask(QBLSentinelQueue<QBLThreadRunnable*>& tasks, QBLThreadRunnable*& task,
                        unsigned long timeout) {
    if (tasks.get(task, 0)) return true;
    if (timeout == 0) return false;
    const QBLNoCancel noCancel;
    return tasks.get(task, timeout);
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
