#include "TavThread/TavSemaphore.h"

#include <new>

#include "TavThread/internal/TavCreate.hpp"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/shared/TavSemaphoreRecord.hpp"

namespace {

constexpr TavAttrKind kKind = tavBasicAttrKind("TavSemaphoreAttr");

int create(TavSemaphore** out, unsigned initialCount, const TavAttributes& attrs) {
    TavSemaphore* s = new (std::nothrow) TavSemaphore;
    if (s == nullptr) return TAVTHREAD_NOMEM;
    if (const int err = tavRetryErrno([=] { return sem_init(&s->native, 0, initialCount); })) {
        delete s;
        return tavThread_MapError(err);
    }
    s->flags = kTavSemaphoreInitialized | (attrs.syntaxTraced() ? kTavSemaphoreSyntaxTraced : 0U);
    s->traceObj = attrs.traceObject();
    *out = s;
    return TAVTHREAD_OK;
}

}  // namespace

int tavSemaphoreTryWaitGeneral(TavSemaphore* s) {
    if (s == nullptr) return TAVTHREAD_INVALID;
    const int err = tavRetryErrno([s] { return sem_trywait(&s->native); });
    return err == EAGAIN ? TAVTHREAD_BUSY : tavThread_MapError(err);
}

int tavSemaphorePostGeneral(TavSemaphore* s) {
    if (s == nullptr) return TAVTHREAD_INVALID;
    return tavThread_MapError(tavRetryErrno([s] { return sem_post(&s->native); }));
}

int tavSemaphoreOfferGeneral(TavSemaphore* s) {
    if (s->waiters == 0) return tavThread_MapError(EOVERFLOW);
    const int rc = tavSemaphorePostFast(s);
    if (rc == TAVTHREAD_OK) --s->waiters;
    return rc;
}

extern "C" {

int tavXSemaphoreCreate(TavSemaphore** out, unsigned initialCount, ...) {
    const int count = static_cast<int>(initialCount);
    va_list list;
    va_start(list, initialCount);
    const int rc = tavCreate(
        out, kKind, list,
        [=](const TavAttributes& attrs) { return create(out, initialCount, attrs); },
        [=](void* traceObj, const char* attributes) {
            tavThreadTraceOutput(traceObj, TavTraceSemaphore, "%s%s( s:%x=%x, count:%d%s )",
                                 TAV_TRACE_CALL("tavSemaphoreCreate"), tavTraceHex(out),
                                 tavTraceHex(*out), count, attributes);
        },
        [=](void* traceObj, const char* attributes) {
            tavThreadTraceOutput(traceObj, TavTraceSyntax, "CREATE SEMAPHORE %x WITH COUNT %d%s;",
                                 tavTraceHex(*out), count, attributes);
        });
    va_end(list);
    return rc;
}

int tavXSemaphoreDestroy(TavSemaphore* s) {
    if (s == nullptr) return TAVTHREAD_INVALID;
    const int rc = tavThread_MapError(tavRetryErrno([s] { return sem_destroy(&s->native); }));
    delete s;
    return rc;
}

int tavXSemaphoreWait(TavSemaphore* s) {
    if (s == nullptr) return TAVTHREAD_INVALID;
    return tavThread_MapError(tavRetryErrno([s] { return sem_wait(&s->native); }));
}

int tavXSemaphoreTryWait(TavSemaphore* s) { return tavSemaphoreTryWaitFast(s); }

int tavXSemaphoreTimedWait(TavSemaphore* s, unsigned ms) {
    if (s == nullptr || ms == TAVTHREAD_INFINITE) return tavXSemaphoreWait(s);
    return tavPoll(ms, [s] { return tavRetryErrno([s] { return sem_trywait(&s->native); }); });
}

int tavXSemaphorePost(TavSemaphore* s) { return tavSemaphorePostFast(s); }

int tavXSemaphorePostN(TavSemaphore* s, int n) {
    if (s == nullptr) return TAVTHREAD_INVALID;
    int rc = TAVTHREAD_OK;
    for (; n > 0 && rc == TAVTHREAD_OK; --n) rc = tavSemaphorePostFast(s);
    return rc;
}

}  // extern "C"
