#ifndef TAVTHREAD_TAVCONDITION_H
#define TAVTHREAD_TAVCONDITION_H

#include <pthread.h>

#include "TavThread/TavResult.h"

/// A condition variable. Waits may end without a signal: test the predicate in a loop.
///
/// Threads: any thread may call any operation; a waiter must hold the mutex that it passes.
typedef struct TavCondition TavCondition;

/// Attribute tags of tavXConditionCreate; a list ends with TavConditionAttrEnd.
enum TavConditionAttributes {
    TavConditionAttrEnd = 0,
    TavConditionAttrNoop = 1,
    TavConditionAttrDisableSyntax = 2,  ///< no creation-syntax trace line
    TavConditionAttrTraceObj = 3        ///< followed by a void*
};

TAV_EXTERN_C_BEGIN

/// @param out  receives the condition; null after a failure.
TAV_API int tavXConditionCreate(TavCondition** out, ...);
/// Requires: no thread waits for the condition.
TAV_API int tavXConditionDestroy(TavCondition* cv);

/// @param m  the caller holds it before the call, and holds it again when the call returns.
TAV_API int tavXConditionWait(TavCondition* cv, pthread_mutex_t* m);
/// @param ms  milliseconds on the time-of-day clock; TAVTHREAD_INFINITE waits without limit.
/// @return TAVTHREAD_TIMEOUT when the time ran out; TAVTHREAD_NOTSUPPORTED if the system does not
///         provide the clock.
TAV_API int tavXConditionTimedWait(TavCondition* cv, pthread_mutex_t* m, unsigned ms);
/// Wakes one waiter.
TAV_API int tavXConditionSignal(TavCondition* cv);
/// Wakes all waiters.
TAV_API int tavXConditionBroadcast(TavCondition* cv);

TAV_EXTERN_C_END

#endif
