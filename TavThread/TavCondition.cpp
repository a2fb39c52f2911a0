#include "TavThread/TavCondition.h"

#include <new>

#include "TavThread/internal/TavCreate.hpp"
#include "TavThread/internal/TavSystem.hpp"

struct TavCondition {
    pthread_cond_t native;
};

namespace {

constexpr TavAttrKind kKind = tavBasicAttrKind("TavConditionAttr");

int create(TavCondition** out) {
    TavCondition* cv = new (std::nothrow) TavCondition;
    if (cv == nullptr) return TAVTHREAD_NOMEM;
    if (const int err = tavRetry([cv] { return pthread_cond_init(&cv->native, nullptr); })) {
        delete cv;
        return tavThread_MapError(err);
    }
    *out = cv;
    return TAVTHREAD_OK;
}

}  // namespace

extern "C" {

int tavXConditionCreate(TavCondition** out, ...) {
    va_list list;
    va_start(list, out);
    const int rc = tavCreate(
        out, kKind, list, [out](const TavAttributes&) { return create(out); },
        [out](void* traceObj, const char* attributes) {
            tavThreadTraceOutput(traceObj, TavTraceCondition, "%s%s( cv:%x=%x%s )",
                                 TAV_TRACE_CALL("tavConditionCreate"), tavTraceHex(out),
                                 tavTraceHex(*out), attributes);
        },
        [out](void* traceObj, const char* attributes) {
            tavThreadTraceOutput(traceObj, TavTraceSyntax, "CREATE CONDITION VARIABLE %x%s;",
                                 tavTraceHex(*out), attributes);
        });
    va_end(list);
    return rc;
}

int tavXConditionDestroy(TavCondition* cv) {
    if (cv == nullptr) return TAVTHREAD_INVALID;
    const int rc = tavThread_MapError(tavRetry([cv] { return pthread_cond_destroy(&cv->native); }));
    delete cv;
    return rc;
}

int tavXConditionWait(TavCondition* cv, pthread_mutex_t* m) {
    return tavXConditionTimedWait(cv, m, TAVTHREAD_INFINITE);
}

int tavXConditionTimedWait(TavCondition* cv, pthread_mutex_t* m, unsigned ms) {
    if (cv == nullptr || m == nullptr) return TAVTHREAD_INVALID;
    return tavWaitOn(&cv->native, m, ms);
}

int tavXConditionSignal(TavCondition* cv) {
    if (cv == nullptr) return TAVTHREAD_INVALID;
    return tavThread_MapError(tavRetry([cv] { return pthread_cond_signal(&cv->native); }));
}

int tavXConditionBroadcast(TavCondition* cv) {
    if (cv == nullptr) return TAVTHREAD_INVALID;
    return tavThread_MapError(tavRetry([cv] { return pthread_cond_broadcast(&cv->native); }));
}

}  // extern "C"
