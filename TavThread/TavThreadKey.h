#ifndef TAVTHREAD_TAVTHREADKEY_H
#define TAVTHREAD_TAVTHREADKEY_H

#include <pthread.h>

#include "TavThread/TavResult.h"

/// A key for a thread-specific value. The value of each thread is null at first.
///
/// Threads: any thread may get and set its own value. A key works whether or not the layer is
/// initialised.
typedef struct TavThreadKey TavThreadKey;

TAV_EXTERN_C_BEGIN

/// @param out         receives the key; null after a failure.
/// @param destructor  called with the thread's value when a thread ends, unless the value is null.
TAV_API int tavXThreadKeyCreate(TavThreadKey** out, void (*destructor)(void*));
/// Frees the key. Does not call the destructor.
TAV_API int tavXThreadKeyDestroy(TavThreadKey* key);
TAV_API int tavXThreadSetSpecific(TavThreadKey* key, const void* value);
TAV_API int tavXThreadGetSpecific(TavThreadKey* key, void** value);

/// Calls the routine if no call for this `once` has completed. Waits for a call in progress.
/// @return TAVTHREAD_ERROR if the routine threw; the next tavXThreadOnce calls it again.
TAV_API int tavXThreadOnce(pthread_once_t* once, void (*routine)(void));

TAV_EXTERN_C_END

#endif
