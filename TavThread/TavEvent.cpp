#include "TavThread/TavEvent.h"

#include <new>

#include "TavThread/internal/TavEventRecord.hpp"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/internal/TavTraceLine.hpp"

namespace {

constexpr TavAttrKind kKind = tavBasicAttrKind("TavEventAttr");

int create(TavEvent** out, unsigned flags) {
    if (out == nullptr) return TAVTHREAD_INVALID;
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

void trace(TavEvent** out, unsigned flags, const TavAttributes& attrs, va_list list) {
    void* const traceObj = attrs.traceObject();
    const bool manual = (flags & kTavEventManualReset) != 0;
    const bool signaled = (flags & kTavEventSignaled) != 0;
    tavThreadTraceOutput(traceObj, TavTraceEvent,
                         "%s%s( event:%x=%x, manualReset:%s, setSignaled:%s%s )",
                         TAV_TRACE_CALL("tavEventCreate"), tavTraceHex(out), tavTraceHex(*out),
                         manual ? "TRUE" : "FALSE", signaled ? "TRUE" : "FALSE",
                         TavAttributeText(kKind, TavAttributeText::Call, list).text());
    if (attrs.syntaxTraced())
        tavThreadTraceOutput(traceObj, TavTraceSyntax, "CREATE %sEVENT %x%s%s;",
                             signaled ? "SIGNALED " : "", tavTraceHex(*out),
                             manual ? " WITH MANUAL RESET" : "",
                             TavAttributeText(kKind, TavAttributeText::Syntax, list).text());
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
        // A signal that arrives with the end of the time stays for the next waiter.
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
    va_list list, again;
    va_start(list, setSignaled);
    va_copy(again, list);
    if (out != nullptr) *out = nullptr;
    const unsigned flags = (manualReset != 0 ? kTavEventManualReset : 0U) |
                           (setSignaled != 0 ? kTavEventSignaled : 0U);
    TavAttributes attrs;
    int rc = tavReadAttributes(kKind, list, attrs);
    if (rc == TAVTHREAD_OK) rc = create(out, flags);
    if (rc == TAVTHREAD_OK && tavTraceReplaced()) trace(out, flags, attrs, again);
    va_end(again);
    va_end(list);
    return rc;
}

int tavXEventDestroy(TavEvent* e) {
    if (e == nullptr) return TAVTHREAD_INVALID;
    { TavHold hold(e->mutex); }  // the signaller of the last wait may not be out of it yet
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
