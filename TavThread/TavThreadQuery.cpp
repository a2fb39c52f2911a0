#include <sched.h>

#include <cstdio>
#include <cstring>

#include "TavThread/TavThread.h"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/shared/TavThreadRecord.hpp"

namespace {

int adjustPriority(pthread_t handle, long delta) {
    int policy = 0;
    sched_param param{};
    if (tavRetry([&] { return pthread_getschedparam(handle, &policy, &param); }) != 0)
        return TAVTHREAD_AGAIN;
    const int bound =
        delta < 1 ? sched_get_priority_min(SCHED_OTHER) : sched_get_priority_max(SCHED_OTHER);
    if (bound == -1) return TAVTHREAD_ERROR;
    int wanted = 0;
    if (__builtin_add_overflow(param.sched_priority, delta, &wanted)) return TAVTHREAD_AGAIN;
    if (delta < 1 ? wanted < bound : wanted > bound) return TAVTHREAD_AGAIN;
    param.sched_priority = wanted;
    return tavThread_MapError(
        tavRetry([&] { return pthread_setschedparam(handle, policy, &param); }));
}

}  // namespace

extern "C" {

int tavXThreadEqual(TavThread* a, TavThread* b) { return a == b ? 1 : 0; }

int tavXThreadYield(void) {
    return tavThread_MapError(tavRetryErrno([] { return sched_yield(); }));
}

unsigned tavXThreadId(TavThread* thread) {
    if (thread == nullptr) thread = tavThreadSelf();
    return thread != nullptr ? thread->number : 0;
}

char* tavXThreadStrId(TavThread* thread, char* buf, size_t n) {
    if (buf == nullptr) return nullptr;
    const pthread_t handle =
        thread != nullptr ? thread->handle.load(std::memory_order_relaxed) : pthread_self();
    char text[32];
    std::snprintf(text, sizeof text, "%8x(%8x)",
                  static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(thread)),
                  static_cast<unsigned>(handle));
    return std::strncpy(buf, text, n);
}

int tavXThreadAlive(TavThread* thread) {
    if (thread == nullptr) return 1;
    TavHold hold(thread->transition);
    return !thread->finished &&
                   thread->state.load(std::memory_order_relaxed) > TavThreadStateInitial
               ? 1
               : 0;
}

int tavXThreadAutopsy(TavThread* thread) {
    if (thread == nullptr) thread = tavThreadSelf();
    if (thread == nullptr) return TavThreadExitAlive;
    const int state = thread->state.load(std::memory_order_acquire);
    if (state != TavThreadStateInitial && state != TavThreadStateException)
        return TavThreadExitAlive;
    return thread->reason.load(std::memory_order_acquire);
}

void* tavXThreadExitStatus(TavThread* thread) {
    return thread != nullptr ? thread->exitValue.load(std::memory_order_acquire) : nullptr;
}

int tavXThreadAdjustPriority(TavThread* thread, long delta) {
    if (thread == nullptr || delta == 0) return TAVTHREAD_OK;
    // A thread sets `finished` under this mutex, so its handle stays valid while we hold the mutex.
    TavHold hold(thread->transition);
    if (thread->finished) return TAVTHREAD_AGAIN;
    return adjustPriority(thread->handle.load(std::memory_order_relaxed), delta);
}

}  // extern "C"
