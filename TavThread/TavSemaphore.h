#ifndef TAVTHREAD_TAVSEMAPHORE_H
#define TAVTHREAD_TAVSEMAPHORE_H

#include "TavThread/TavResult.h"

/// A counting semaphore.
///
/// Threads: any thread may call any operation.
typedef struct TavSemaphore TavSemaphore;

/// Attribute tags of tavXSemaphoreCreate; a list ends with TavSemaphoreAttrEnd.
enum TavSemaphoreAttributes {
    TavSemaphoreAttrEnd = 0,
    TavSemaphoreAttrNoop = 1,
    TavSemaphoreAttrDisableSyntax = 2,  ///< no creation-syntax trace line
    TavSemaphoreAttrTraceObj = 3        ///< followed by a void*
};

TAV_EXTERN_C_BEGIN

/// @param out           receives the semaphore; null after a failure.
/// @param initialCount  TAVTHREAD_ERROR if the system cannot count that far.
TAV_API int tavXSemaphoreCreate(TavSemaphore** out, unsigned initialCount, ...);
/// Requires: nobody waits.
TAV_API int tavXSemaphoreDestroy(TavSemaphore* s);

TAV_API int tavXSemaphoreWait(TavSemaphore* s);
/// @return TAVTHREAD_BUSY if the count is 0.
TAV_API int tavXSemaphoreTryWait(TavSemaphore* s);
/// Polls about every 100 ms; the last sleep is followed by no further try, so that the whole call
/// may take up to twice the timeout. tavXSemaphoreBoundedWait wakes at once.
/// @param ms  0 tries once, TAVTHREAD_INFINITE waits without limit.
/// @return TAVTHREAD_TIMEOUT when the time ran out.
TAV_API int tavXSemaphoreTimedWait(TavSemaphore* s, unsigned ms);
/// Waits on the monotonic clock: wakes as soon as there is a count to take, ends at the bound and
/// takes no count that it does not report. It looks actively for a few microseconds before it
/// sleeps, as long as that has paid off lately on this semaphore.
/// @param ms  0 tries once, TAVTHREAD_INFINITE waits without limit.
/// @return TAVTHREAD_TIMEOUT when the time ran out, also for 0 ms.
TAV_API int tavXSemaphoreBoundedWait(TavSemaphore* s, unsigned ms);
TAV_API int tavXSemaphorePost(TavSemaphore* s);
/// Posts n times, up to the first failure; n of 0 or less posts nothing.
TAV_API int tavXSemaphorePostN(TavSemaphore* s, int n);

TAV_EXTERN_C_END

#endif
