// Shows which pools refuse or drop tasks, and how a group waits for its tasks.
#include <atomic>
#include <cstdio>
#include <string>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolVariable.hpp"
#include "QBLCore/Threads/QBLThreadManualResetEvent.hpp"

namespace {

struct Gated : QBLThreadRunnable {  // a task that runs until the gate opens
    QBLThreadSemaphore begun;
    QBLThreadManualResetEvent gate;
    std::atomic<int> done{0};
    void run() override {
        begun.post();
        gate.wait();
        ++done;
    }
};

/// Submits the same task three more times while it runs, then stops the pool.
void show(const char* name, QBLThreadPool* pool) {
    Gated task;
    int accepted = pool->execute(&task, QBLWaitForever);
    task.begun.wait();
    for (int i = 0; i < 3; ++i) accepted += pool->execute(&task);
    pool->setStopWork(1);
    task.gate.signal();
    delete pool;
    std::printf("%s: accepted %d of 4, run %d\n", name, accepted, task.done.load());
}

std::atomic<int> g_sum{0};

void add(const std::string& digits) try {
    QBLThreadPoolQueued pool(2, 8);
    QBLTaskGroup group(pool);
    for (unsigned i = 0; i < 5; ++i) group.run([i, &digits] { g_sum += digits.at(i) - '0'; });
    group.wait();
} catch (QBLThrowable& e) {
    std::printf("%s, sum of the others %d\n", e.getThrowableName(), g_sum.load());
}

}  // namespace

int main() {
    qblCoreInitialize();
    show("fixed", new QBLThreadPoolFixed(1));
    show("queued", new QBLThreadPoolQueued(1, 2));
    show("queued, unfinished", new QBLThreadPoolQueued(1, 2, 0));
    show("variable", new QBLThreadPoolVariable(1, 0, 100));
    add("2468");
    return qblCoreTerminate();
}
