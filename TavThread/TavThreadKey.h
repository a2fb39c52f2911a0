#ifndef TAVTHREAD_TAVTHREADKEY_H
#define TAVTHREAD_TAVTHREADKEY_H

#include <pthread.h>

#include "TavThread/TavResult.h"

/// A value of its own for each thread, null at first.
///
/// Threads: any thread may get and set its value. Works whether or not the layer is initialised.
typedef struct TavThreadKey TavThreadKey;

TAV_EXTERN_C_BEGIN

/// @param out         receives the key; null after a failure.
/// @param destructor  called at the end of a thread with its value, if that is not null.
TAV_API int tavXThreadKeyCreate(TavThreadKey** out, void (*destructor)(void*));
/// Calls no destructor.
TAV_API int tavXThreadKeyDestroy(TavThreadKey* key);
TAV_API int tavXThreadSetSpecific(TavThreadKey* key, const void* value);
TAV_API int tavXThreadGetSpecific(TavThreadKey* key, void** value);

/// Calls the routine unless that has been done for this `once`; waits for a call under way.
/// @return TAVTHREAD_ERROR if the routine threw; the next call then tries again.
TAV_API int tavXThreadOnce(pthread_once_t* once, void (*routine)(void));

TAV_EXTERN_C_END

#endif
