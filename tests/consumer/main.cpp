#include <atomic>
#include <cstdio>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/Threads/QBLThreadRunnable.hpp"

struct Counter : QBLThreadRunnable {
    std::atomic<int> calls{0};
    void run() override { ++calls; }
};

int main() {
    qblCoreInitialize();
    Counter task;
    try {
        QBLThreadPoolFixed pool(3);
        for (int i = 0; i < 1000; ++i) pool.execute(&task, QBLWaitForever);
        pool.setStopWork(1);
        pool.execute(&task);  // refused from now on
    } catch (QBLThrowable& e) {
        std::puts(e.toString());
    }
    std::printf("%d calls\n", task.calls.load());
    return qblCoreTerminate();
}
