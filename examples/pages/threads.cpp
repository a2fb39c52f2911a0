// Tries locks that another thread holds, and waits for an item in a list.
#include <chrono>
#include <cstdio>
#include <mutex>

#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/Frame/QBLThreadMonitor.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadAutoResetEvent.hpp"
#include "QBLCore/Threads/QBLThreadConditionVariable.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadRWLock.hpp"
#include "QBLCore/Threads/QBLThreadRecursiveMutex.hpp"

namespace {

struct Other : QBLThreadRunnable {
    QBLThreadRecursiveMutex mutex;
    QBLThreadRWLock lock;
    QBLThreadAutoResetEvent looked;
    QBLThreadMonitor<QBLThreadMutex, QBLList<int>> items;
    QBLThreadConditionVariable arrived;

    // Unlocks a mutex that it does not hold, which clang would warn about.
    void run() override QBL_NO_THREAD_SAFETY_ANALYSIS {
        const bool got = mutex.try_lock_for(std::chrono::milliseconds(10));
        std::printf("mutex: try %d, for 10 ms %d\n", mutex.tryLock(), got);
        std::printf("lock: as writer %d, as reader %d\n", lock.tryLock(), lock.tryReadLock());
        try {
            mutex.unlock();
        } catch (QBLThreadResourceError& e) {
            std::printf("%s\n", e.getMessage());
        }
        looked.signal();
        QBLThreadGuard guard(items);
        while ((*items).empty()) arrived.wait(items);
        std::printf("item %d\n", (*items).front());
    }
};

}  // namespace

int main() {
    qblCoreInitialize();
    Other other;
    QBLThread thread(&other);
    const std::scoped_lock mine(other.mutex, other.lock);
    thread.start();
    if (!other.looked.timedWait(std::chrono::minutes(1))) return 1;
    {
        QBLThreadGuard guard(other.items);
        (*other.items).push_back(5);
        other.arrived.signal();
    }
    thread.join();
    return qblCoreTerminate();
}
