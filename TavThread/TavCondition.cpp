#include "TavThread/TavCondition.h"

#include <new>

#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/internal/TavTraceLine.hpp"

struct TavCondition {
    pthread_cond_t native;
    void* traceObj = nullptr;
    bool syntaxTraced = true;
};

namespace {

constexpr TavAttrKind kKind = tavBasicAttrKind("TavConditionAttr");

int create(TavCondition** out, va_list list) {
    TavAttributes attrs;
    const int rc = tavReadAttributes(kKind, list, attrs);
    if (rc != TAVTHREAD_OK) return rc;
    if (out == nullptr) return TAVTHREAD_INVALID;
    TavCondition* cv = new (std::nothrow) TavCondition;
    if (cv == nullptr) return TAVTHREAD_NOMEM;
    if (const int err = tavRetry([cv] { return pthread_cond_init(&cv->native, nullptr); })) {
        delete cv;
        return tavThread_MapError(err);
    }
    cv->traceObj = attrs.traceObject();
    cv->syntaxTraced = attrs.syntaxTraced();
    *out = cv;
    return TAVTHREAD_OK;
}

void trace(TavCondition** out, va_list list) {
    const TavCondition* cv = *out;
    tavThreadTraceOutput(cv->traceObj, TavTraceCondition, "%s%s( cv:%x=%x%s )",
                         TAV_TRACE_CALL("tavConditionCreate"), tavTraceHex(out), tavTraceHex(cv),
                         TavAttributeText(kKind, TavAttributeText::Call, list).text());
    if (cv->syntaxTraced)
        tavThreadTraceOutput(cv->traceObj, TavTraceSyntax, "CREATE CONDITION VARIABLE %x%s;",
                             tavTraceHex(cv),
                             TavAttributeText(kKind, TavAttributeText::Syntax, list).text());
}

}  // namespace

extern "C" {

int tavXConditionCreate(TavCondition** out, ...) {
    va_list list, again;
    va_start(list, out);
    va_copy(again, list);
    if (out != nullptr) *out = nullptr;
    const int rc = create(out, list);
    if (out != nullptr && *out != nullptr && tavTraceReplaced()) trace(out, again);
    va_end(again);
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
