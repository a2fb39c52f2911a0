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

/// @param out  receives the semaphore; null after a failure.
/// @return TAVTHREAD_ERROR if initialCount exceeds the system's maximum.
TAV_API int tavXSemaphoreCreate(TavSemaphore** out, unsigned initialCount, ...);
/// Requires: no thread waits for the semaphore.
TAV_API int tavXSemaphoreDestroy(TavSemaphore* s);

TAV_API int tavXSemaphoreWait(TavSemaphore* s);
/// @return TAVTHREAD_BUSY if the count is 0.
TAV_API int tavXSemaphoreTryWait(TavSemaphore* s);
/// Tries about every 100 ms. Does not try again after the last sleep. The call may take up to twice
/// the timeout. tavXSemaphoreBoundedWait wakes up as soon as there is a post.
/// @param ms  0 tries once, TAVTHREAD_INFINITE waits without limit.
/// @return TAVTHREAD_TIMEOUT when the time ran out.
TAV_API int tavXSemaphoreTimedWait(TavSemaphore* s, unsigned ms);
/// Wakes up as soon as there is a post to take. The timeout uses the monotonic clock. A call that
/// times out has taken no post. Before the call sleeps, it spins for a few microseconds if spinning
/// has recently paid off on this semaphore.
/// @param ms  0 tries once, TAVTHREAD_INFINITE waits without limit.
/// @return TAVTHREAD_TIMEOUT when the time ran out, also for 0 ms.
TAV_API int tavXSemaphoreBoundedWait(TavSemaphore* s, unsigned ms);
TAV_API int tavXSemaphorePost(TavSemaphore* s);
/// Posts n times, and stops at the first failure. Posts nothing if n is 0 or less.
TAV_API int tavXSemaphorePostN(TavSemaphore* s, int n);

TAV_EXTERN_C_END

#endif
