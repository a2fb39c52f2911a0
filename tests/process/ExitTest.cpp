// exit_test MODE: ends the process in one of the ways in which real programs end, while the library
// is in use. The process must end by itself with status 0 and without a sanitizer report.
#include <cstdlib>
#include <string>

#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolVariable.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "tests/support/Tasks.hpp"

namespace {

QBLThreadMutex* g_lock = nullptr;

// Never destroyed, because threads run them until the process ends.
auto& g_endless = *new Job([] {
    for (;;) {
        QBLThreadGuard guard(*g_lock);
        QBLThread::sleep(1);
    }
});
auto& g_brief = *new Job([] { QBLThread::yield(); });
QBLThread* g_thread = nullptr;
QBLThreadPool* g_pools[3] = {};

void startAll() {
    g_lock = new QBLThreadMutex;
    qblCoreInitialize();
    g_thread = new QBLThread(&g_endless);
    g_thread->start();
    g_pools[0] = new QBLThreadPoolFixed(2);
    g_pools[1] = new QBLThreadPoolVariable(1, 10, QBLWaitForever);
    g_pools[2] = new QBLThreadPoolQueued(2, 0);
    for (QBLThreadPool* pool : g_pools) {
        pool->execute(&g_endless, QBLWaitForever);
        for (int i = 0; i < 20; ++i) pool->execute(&g_brief, QBLWaitForever);
    }
}

/// Uses the library while static objects are destroyed, after main() has returned.
struct LateUser {
    QBLThreadPoolVariable* pool = nullptr;
    ~LateUser() {
        if (pool == nullptr) return;
        pool->execute(&g_brief, 0);
        delete pool;
        QBLThreadMutex mutex;
        QBLThreadGuard guard(mutex);
        if (qblCoreTerminate() != 0 || qblCoreTerminate() != -2) std::_Exit(3);
    }
} g_late;

}  // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "static") {
        qblCoreInitialize();
        g_late.pool = new QBLThreadPoolVariable(1, 10, 1);
        return 0;
    }
    startAll();
    if (mode == "exit") std::exit(0);
    if (mode == "stopped") return qblCoreTerminate();
    return mode == "return" ? 0 : 2;
}
