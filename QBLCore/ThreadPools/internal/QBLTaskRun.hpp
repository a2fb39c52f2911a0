#ifndef QBLCORE_THREADPOOLS_INTERNAL_QBLTASKRUN_HPP
#define QBLCORE_THREADPOOLS_INTERNAL_QBLTASKRUN_HPP

#include "QBLCore/Base/QBLNoCancel.hpp"
#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"
#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "TavThread/shared/TavContain.hpp"

/// The stack size of a worker in the fixed and the variable pool, in bytes.
constexpr unsigned long kPoolStackSize = 4096000;

/// Runs a task, if it is not null, on a worker. Drops all exceptions, except the end of the thread.
/// A cancellation ends the thread in a task or right after a task. It never ends the thread between
/// taking a task and running it, because there is no cancellation point in between. A task may
/// change how its thread can be cancelled; this function undoes the change after the task.
inline void qblRunTask(QBLThreadRunnable* task) {
    if (task == nullptr) return;
    tavContain([task] { task->run(); });
    int before = 0;
    pthread_setcanceltype(PTHREAD_CANCEL_DEFERRED, &before);
    pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &before);
    pthread_testcancel();
}

/// Starts a thread for a destructor.
/// @return false if the system can no longer start threads, as after the stop of the library. True
///     if the thread has been started, or if it lacked memory or another resource that may become
///     free.
inline bool qblMayStart(QBLThread& thread) {
    bool mayStart = true;
    tavContain([&] {
        try {
            thread.start();
        } catch (QBLThreadResourceError& error) {
            mayStart = error.getMessage() == nullptr;  // an error with a text is permanent
        }
    });
    return mayStart;
}

/// Runs a task once, on a new thread, and waits until this thread has ended. The task may end the
/// thread. Tries until a thread has begun, however long this takes: the caller is a destructor, and
/// a task that ends its thread must not run on the thread of a destructor. The calling thread runs
/// the task only if the system can no longer start threads.
/// @param stackSize  as for QBLThread
inline void qblRunOnOwnThread(QBLThreadRunnable& task, unsigned long stackSize) {
    struct Noting : QBLThreadRunnable {
        explicit Noting(QBLThreadRunnable& t) : task(t) {}
        void run() override {
            begun = true;
            task.run();
        }
        QBLThreadRunnable& task;
        bool begun = false;  // read after the thread has been joined
    } noting(task);
    const QBLNoCancel noCancel;
    while (!noting.begun) {
        QBLThread thread(&noting, stackSize);
        if (!qblMayStart(thread)) {
            tavContain([&noting] { noting.run(); });
            return;
        }
        thread.joinQuietly();
        if (!noting.begun) QBLThread::sleep(10);
    }
}

/// Runs the tasks that remain in a pool's queue after all workers have ended.
/// @param take  stores the next task in its argument; returns false if the queue is empty
template <class Take>
void qblRunLeft(Take take) {
    QBLThreadRunnable* task = nullptr;
    while (take(task) && task != nullptr) qblRunOnOwnThread(*task, kPoolStackSize);
}

#endif
