#ifndef QBLCORE_THREADPOOLS_INTERNAL_QBLTASKRUN_HPP
#define QBLCORE_THREADPOOLS_INTERNAL_QBLTASKRUN_HPP

#include "QBLCore/Threads/QBLThread.hpp"
#include "TavThread/internal/TavContain.hpp"

/// Stack of the workers of the fixed and the variable pool, in bytes.
constexpr unsigned long kPoolStackSize = 4096000;

/// Runs a task, if it is one. Whatever it throws is dropped, but for the end of the thread.
inline void qblRunTask(QBLThreadRunnable* task) {
    if (task != nullptr) tavContain([task] { task->run(); });
}

/// Waits for a worker's end in its destructor, where it does not matter how the thread ended.
inline void qblJoinWorker(QBLThread& worker) {
    tavContain([&worker] { worker.join(); });
}

#endif
