#ifndef TAVTHREAD_TAVEVENT_H
#define TAVTHREAD_TAVEVENT_H

#include "TavThread/TavResult.h"

/// A flag that threads wait for and that a signal sets. A manual-reset event lets all waiters
/// through from its signal until its reset. An auto-reset event lets one waiter through per signal.
/// Signals do not add up.
///
/// Threads: any thread may call any operation.
typedef struct TavEvent TavEvent;

/// Attribute tags of tavXEventCreate; a list ends with TavEventAttrEnd.
enum TavEventAttributes {
    TavEventAttrEnd = 0,
    TavEventAttrNoop = 1,
    TavEventAttrDisableSyntax = 2,  ///< no creation-syntax trace line
    TavEventAttrTraceObj = 3        ///< followed by a void*
};

TAV_EXTERN_C_BEGIN

/// @param out  receives the event; null after a failure.
TAV_API int tavXEventCreate(TavEvent** out, int manualReset, int setSignaled, ...);
/// Requires: no thread waits for the event.
TAV_API int tavXEventDestroy(TavEvent* e);

TAV_API int tavXEventWait(TavEvent* e);
/// If a waiter wakes up but another thread has taken the signal, the full timeout starts again.
/// @param ms  TAVTHREAD_INFINITE waits without limit.
/// @return TAVTHREAD_TIMEOUT when the time ran out.
TAV_API int tavXEventTimedWait(TavEvent* e, unsigned ms);
TAV_API int tavXEventSignal(TavEvent* e);
/// Not implemented.
/// @return TAVTHREAD_NOTSUPPORTED.
TAV_API int tavXEventPulse(TavEvent* e);
TAV_API int tavXEventReset(TavEvent* e);

TAV_EXTERN_C_END

#endif
