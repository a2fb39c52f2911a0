#include <mutex>
#include <new>

#include "TavThread/TavThread.h"
#include "TavThread/TavTrace.h"
#include "TavThread/internal/TavHeldMutexes.hpp"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/shared/TavThreadRecord.hpp"

namespace {

// The key is created once and never deleted, not even when the layer stops. So a thread that ends
// after the layer has stopped still releases its record, and no lookup uses a deleted key.
TavThreadCriticalSection g_lock;
unsigned g_uses = 0;        // guarded by g_lock
bool g_keyMade = false;     // guarded by g_lock
pthread_key_t g_recordKey;  // set before g_initialized
std::atomic<bool> g_initialized{false};
std::atomic<unsigned> g_generation{0};
std::atomic<std::uint32_t> g_lastNumber{0};

void releaseAdopted(void* value) {
    TavThread* thread = static_cast<TavThread*>(value);
    if (thread->has(kTavThreadAdopted)) tavThreadRelease(thread);
}

/// Returns the calling thread's record, even if it is from an earlier run of the layer.
TavThread* attached() { return static_cast<TavThread*>(pthread_getspecific(g_recordKey)); }

bool outdated(const TavThread* thread) {
    return thread->has(kTavThreadAdopted) &&
           thread->generation != g_generation.load(std::memory_order_relaxed);
}

void dropAdopted() {
    TavThread* thread = attached();
    if (thread == nullptr || !thread->has(kTavThreadAdopted)) return;
    // If the key keeps the record, so does the thread.
    if (pthread_setspecific(g_recordKey, nullptr) == 0) tavThreadRelease(thread);
}

TavThread* adopt() {
    int rc;
    TavThread* thread = tavThreadNewRecord(rc);
    if (thread == nullptr) return nullptr;
    thread->handle.store(pthread_self(), std::memory_order_relaxed);
    thread->mark(kTavThreadAdopted);
    thread->joinable.store(TavJoinable::kAdopted, std::memory_order_relaxed);
    thread->generation = g_generation.load(std::memory_order_relaxed);
    thread->reason.store(TavThreadExitAlive, std::memory_order_relaxed);
    thread->state.store(TavThreadStateRunning, std::memory_order_release);
    if (pthread_setspecific(g_recordKey, thread) == 0) return thread;
    tavThreadRelease(thread);
    return nullptr;
}

int initializeOnce() {
    if (!g_keyMade) {
        const int err = tavRetry([] { return pthread_key_create(&g_recordKey, &releaseAdopted); });
        if (err != 0) return tavThread_MapError(err);
        g_keyMade = true;
    }
    g_initialized.store(true, std::memory_order_release);
    return TAVTHREAD_OK;
}

void terminateOnce() {
    if (!tavThreadInitialized()) return;
    g_lastNumber.store(0, std::memory_order_relaxed);
    dropAdopted();
    g_generation.fetch_add(1, std::memory_order_relaxed);
    g_initialized.store(false, std::memory_order_release);
}

}  // namespace

bool tavThreadInitialized() { return g_initialized.load(std::memory_order_acquire); }

TavThread* tavThreadPeek() {
    if (!tavThreadInitialized()) return nullptr;
    TavThread* thread = attached();
    return thread != nullptr && !outdated(thread) ? thread : nullptr;
}

TavThread* tavThreadSelf() {
    if (TavThread* thread = tavThreadPeek()) return thread;
    if (!tavThreadInitialized()) return nullptr;
    dropAdopted();  // a record from an earlier run of the layer
    return adopt();
}

int tavThreadAttach(TavThread* thread) {
    return tavRetry([thread] { return pthread_setspecific(g_recordKey, thread); });
}

TavThread* tavThreadNewRecord(int& rc) {
    rc = TAVTHREAD_NOMEM;
    TavThread* thread = new (std::nothrow) TavThread;
    if (thread == nullptr) return nullptr;
    rc = tavThread_MapError(tavRetryErrno([=] { return sem_init(&thread->resumed, 0, 1); }));
    if (rc != TAVTHREAD_OK) {
        delete thread;
        return nullptr;
    }
    thread->number = g_lastNumber.fetch_add(1, std::memory_order_relaxed) + 1;
    return thread;
}

void tavThreadRelease(TavThread* thread) {
    if (thread->owners.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    tavHeldMutexesForget(thread);
    tavStateTrapsForget(thread);
    if (thread->attributesMade) pthread_attr_destroy(&thread->attributes);
    pthread_cond_destroy(&thread->called);
    pthread_mutex_destroy(&thread->transition);
    sem_destroy(&thread->resumed);
    delete thread;
}

extern "C" {

int tavThreadProcessInitialize(const char*) {
    std::lock_guard<TavThreadCriticalSection> hold(g_lock);
    return g_uses++ == 0 ? initializeOnce() : TAVTHREAD_OK;
}

int tavThreadProcessTerminate(const char*) {
    std::lock_guard<TavThreadCriticalSection> hold(g_lock);
    if (g_uses == 0) return TAVTHREAD_NOTINIT;
    if (--g_uses == 0) terminateOnce();
    return TAVTHREAD_OK;
}

int tavXThreadInitialize(void) {
    if (!tavThreadInitialized()) return TAVTHREAD_NOTINIT;
    return tavThreadSelf() != nullptr ? TAVTHREAD_OK : TAVTHREAD_ERROR;
}

int tavXThreadTerminate(void) {
    if (!tavThreadInitialized()) return TAVTHREAD_NOTINIT;
    dropAdopted();
    return TAVTHREAD_OK;
}

TavThread* tavXThreadSelf(void) { return tavThreadSelf(); }

int tavXThreadSetTraceObj(void* obj, int inheritable) {
    TavThread* self = tavThreadSelf();
    if (self == nullptr) return TAVTHREAD_ERROR;
    self->traceObj.store(obj, std::memory_order_release);
    if (obj != nullptr && inheritable != 0) self->mark(kTavThreadTraceInheritable);
    return TAVTHREAD_OK;
}

void* tavXThreadGetTraceObj(void) {
    const TavThread* self = tavThreadPeek();
    return self != nullptr ? self->traceObj.load(std::memory_order_acquire) : nullptr;
}

}  // extern "C"
