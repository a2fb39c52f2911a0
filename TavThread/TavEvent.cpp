#include "TavThread/TavEvent.h"

#include <new>

#include "TavThread/internal/TavCreate.hpp"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/shared/TavEventRecord.hpp"

namespace {

constexpr TavAttrKind kKind = tavBasicAttrKind("TavEventAttr");

int create(TavEvent** out, unsigned flags) {
    TavEvent* e = new (std::nothrow) TavEvent;
    if (e == nullptr) return TAVTHREAD_NOMEM;
    e->flags = flags;
    int err = tavRetry([e] { return pthread_cond_init(&e->condition, nullptr); });
    if (err == 0) {
        err = tavRetry([e] { return pthread_mutex_init(&e->mutex, nullptr); });
        if (err != 0) pthread_cond_destroy(&e->condition);
    }
    if (err != 0) {
        delete e;
        return tavThread_MapError(err);
    }
    *out = e;
    return TAVTHREAD_OK;
}

}  // namespace

int tavEventWaitGeneral(TavEvent* e, unsigned ms) {
    if (e == nullptr) return TAVTHREAD_INVALID;
    TavHold hold(e->mutex);
    struct Mark {
        TavEvent* event;
        explicit Mark(TavEvent* of) : event(of) { event->flags.fetch_or(kTavEventWaitedFor); }
        ~Mark() {
            if (event->waiters == 0) event->flags.fetch_and(~kTavEventWaitedFor);
        }
    } mark(e);
    while (!tavEventTake(e)) {
        TavCounted waiting(e->waiters);
        const int rc = tavWaitOn(&e->condition, &e->mutex, ms);
        // A signal that arrives just when the time runs out stays for the next waiter.
        if (rc != TAVTHREAD_OK) return rc;
    }
    return TAVTHREAD_OK;
}

int tavEventSignalGeneral(TavEvent* e) {
    if (e == nullptr) return TAVTHREAD_INVALID;
    TavHold hold(e->mutex);
    const unsigned flags = e->flags.fetch_or(kTavEventSignaled, std::memory_order_release);
    if (e->waiters == 0) return TAVTHREAD_OK;
    return tavThread_MapError((flags & kTavEventManualReset) != 0
                                  ? pthread_cond_broadcast(&e->condition)
                                  : pthread_cond_signal(&e->condition));
}

extern "C" {

int tavXEventCreate(TavEvent** out, int manualReset, int setSignaled, ...) {
    const bool manual = manualReset != 0, signaled = setSignaled != 0;
    va_list list;
    va_start(list, setSignaled);
    const int rc = tavCreate(
        out, kKind, list,
        [=](const TavAttributes&) {
            return create(
                out, (manual ? kTavEventManualReset : 0U) | (signaled ? kTavEventSignaled : 0U));
        },
        [=](void* traceObj, const char* attributes) {
            tavThreadTraceOutput(
                traceObj, TavTraceEvent, "%s%s( event:%x=%x, manualReset:%s, setSignaled:%s%s )",
                TAV_TRACE_CALL("tavEventCreate"), tavTraceHex(out), tavTraceHex(*out),
                manual ? "TRUE" : "FALSE", signaled ? "TRUE" : "FALSE", attributes);
        },
        [=](void* traceObj, const char* attributes) {
            tavThreadTraceOutput(traceObj, TavTraceSyntax, "CREATE %sEVENT %x%s%s;",
                                 signaled ? "SIGNALED " : "", tavTraceHex(*out),
                                 manual ? " WITH MANUAL RESET" : "", attributes);
        });
    va_end(list);
    return rc;
}

int tavXEventDestroy(TavEvent* e) {
    if (e == nullptr) return TAVTHREAD_INVALID;
    { TavHold hold(e->mutex); }  // the thread that signalled last may still hold the mutex
    const int mutexErr = tavRetry([e] { return pthread_mutex_destroy(&e->mutex); });
    const int conditionErr = tavRetry([e] { return pthread_cond_destroy(&e->condition); });
    delete e;
    return mutexErr != 0 || conditionErr != 0 ? TAVTHREAD_ERROR : TAVTHREAD_OK;
}

int tavXEventWait(TavEvent* e) { return tavEventWaitFast(e, TAVTHREAD_INFINITE); }

int tavXEventTimedWait(TavEvent* e, unsigned ms) { return tavEventWaitFast(e, ms); }

int tavXEventSignal(TavEvent* e) { return tavEventSignalFast(e); }

int tavXEventPulse(TavEvent* e) {
    return e == nullptr ? TAVTHREAD_INVALID : TAVTHREAD_NOTSUPPORTED;
}

int tavXEventReset(TavEvent* e) {
    if (e == nullptr) return TAVTHREAD_INVALID;
    TavHold hold(e->mutex);
    e->flags &= ~kTavEventSignaled;
    return TAVTHREAD_OK;
}

}  // extern "C"
