#include "QBLCore/Threads/QBLThreadProcess.h"

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "TavThread/TavThread.h"

namespace {

const char kLayerName[] = "QBLThreads";

/// The starts not yet taken back.
struct Starts {
    QBLThreadCriticalSection lock{0};
    int count = 0;  // guarded by lock
};

// Made when the library is loaded, so that no start or stop fails for want of it.
Starts& g_starts = qblImmortal<Starts>();

}  // namespace

int qblThreadProcessInitialize(const char*) {
    QBLThreadGuard guard(g_starts.lock);
    ++g_starts.count;
    // The layer's own result is deliberately not looked at: without the layer no thread starts,
    // and that is reported where one is started.
    tavThreadProcessInitialize(kLayerName);
    return QBLThread::Initialize();
}

int qblThreadProcessTerminate(const char*) {
    QBLThreadGuard guard(g_starts.lock);
    if (g_starts.count > 0) --g_starts.count;
    tavThreadProcessTerminate(kLayerName);
    // The layer counts for itself, the key does not: it must last as long as the layer.
    return g_starts.count == 0 ? QBLThread::Terminate() : 0;
}
