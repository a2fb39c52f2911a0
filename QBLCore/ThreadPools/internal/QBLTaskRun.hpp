#ifndef QBLCORE_THREADPOOLS_INTERNAL_QBLTASKRUN_HPP
#define QBLCORE_THREADPOOLS_INTERNAL_QBLTASKRUN_HPP

#include "QBLCore/Base/QBLNoCancel.hpp"
#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "TavThread/shared/TavContain.hpp"

/// Stack of the workers of the fixed and the variable pool, in bytes.
constexpr unsigned long kPoolStackSize = 4096000;

/// Runs a task, if it is not null, on a worker. Drops all exceptions, except the end of the thread.
/// A cancellation ends the worker in a task or right after it, but never between taking a task and
/// running it, because there is no cancellation point in between. A task may change how its thread
/// can be cancelled; this is undone after the task.
inline void qblRunTask(QBLThreadRunnable* task) {
    if (task == nullptr) return;
    tavContain([task] { task->run(); });
    int before = 0;
    pthread_setcanceltype(PTHREAD_CANCEL_DEFERRED, &before);
    pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &before);
    pthread_testcancel();
}

/// QBLSentinelQueue::get() for workers. Defers a cancellation, which could swallow a wake-up.
/// Deferring takes time, so this is done only for a wait.
inline bool qblTakeTask(QBLSentinelQueue<QBLThreadRunnable*>& tasks, QBLThreadRunnable*& task,
                        unsigned long timeout) {
    if (tasks.get(task, 0)) return true;
    if (timeout == 0) return false;
    const QBLNoCancel noCancel;
    return tasks.get(task, timeout);
}

/// Runs the tasks left in a pool's queue when there are no workers any more. Each task runs on its
/// own thread, which it may end, or on the calling thread if no thread can be started.
inline void qblRunLeft(QBLSentinelQueue<QBLThreadRunnable*>& tasks) {
    QBLThreadRunnable* task = nullptr;
    while (tasks.get(task, 0) && task != nullptr) {
        QBLThread last(task, kPoolStackSize);
        if (!tavContain([&last] { last.start(); })) tavContain([task] { task->run(); });
    }
}

#endif
