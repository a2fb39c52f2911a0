#include "QBLCore/Threads/QBLThreadProcess.h"

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "TavThread/TavThread.h"

namespace {

const char kLayerName[] = "QBLThreads";

/// The number of starts that no stop has undone yet.
struct Starts {
    QBLThreadCriticalSection lock{0};
    int count = 0;  // guarded by lock
};

// Created when the library is loaded, so that no start or stop can fail to create it.
Starts& g_starts = qblImmortal<Starts>();

}  // namespace

int qblThreadProcessInitialize(const char*) {
    QBLThreadGuard guard(g_starts.lock);
    ++g_starts.count;
    // The layer's own result is deliberately ignored: if the layer is not started,
    // QBLThread::start() reports this.
    tavThreadProcessInitialize(kLayerName);
    return QBLThread::Initialize();
}

int qblThreadProcessTerminate(const char*) {
    QBLThreadGuard guard(g_starts.lock);
    if (g_starts.count > 0) --g_starts.count;
    tavThreadProcessTerminate(kLayerName);
    // The layer counts its starts, but the key does not. The key must stay open as long as the
    // layer runs.
    return g_starts.count == 0 ? QBLThread::Terminate() : 0;
}
