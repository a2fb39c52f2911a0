#ifndef TAVTHREAD_TAVMUTEX_H
#define TAVTHREAD_TAVMUTEX_H

#include "TavThread/TavResult.h"

/// A mutex. Attributes make it recursive or make it track its owner.
///
/// Threads: any thread may call any operation; only the holder may unlock. A mutex works before the
/// layer is initialised, except that a tracking mutex cannot record its owner then.
typedef struct TavMutex TavMutex;

/// Attribute tags of tavXMutexCreate; a list ends with TavMutexAttrEnd.
enum TavMutexAttributes {
    TavMutexAttrEnd = 0,
    TavMutexAttrNoop = 1,
    TavMutexAttrDisableSyntax = 2,  ///< no creation-syntax trace line
    TavMutexAttrTraceObj = 3,       ///< followed by a void*
    TavMutexAttrRecursive = 4,      ///< the holder may lock again, and must unlock as often
    TavMutexAttrTrackOwner = 5,     ///< records the thread, file and line that locked it
    TavMutexAttrFlag6 = 6           ///< stored, but without effect
};

TAV_EXTERN_C_BEGIN

/// @param out  receives the mutex; null after a failure.
TAV_API int tavXMutexCreate(TavMutex** out, ...);
/// Frees the mutex, even if it is locked.
/// @return TAVTHREAD_BUSY if the mutex was still locked.
TAV_API int tavXMutexDestroy(TavMutex* m);

/// @return TAVTHREAD_ERROR if the mutex tracks its owner and no record of the thread can be made.
///         The mutex is locked nevertheless, and the caller must unlock it. The same applies to
///         the operations below that lock.
TAV_API int tavXMutexLock_(TavMutex* m, const char* file, int line);
/// @return TAVTHREAD_BUSY if another thread holds the mutex.
TAV_API int tavXMutexTryLock_(TavMutex* m, const char* file, int line);
/// Tries about every 100 ms. Does not try again after the last sleep. The call may take up to twice
/// the timeout. tavXMutexBoundedLock_ wakes up as soon as the mutex is free.
/// @param ms  0 tries once, TAVTHREAD_INFINITE waits without limit.
/// @return TAVTHREAD_TIMEOUT when the time ran out.
TAV_API int tavXMutexTimedLock_(TavMutex* m, unsigned ms, const char* file, int line);
/// Wakes up as soon as the mutex is free. The timeout uses the monotonic clock.
/// @param ms  0 tries once, TAVTHREAD_INFINITE waits without limit.
/// @return TAVTHREAD_TIMEOUT when the time ran out, also for 0 ms.
TAV_API int tavXMutexBoundedLock_(TavMutex* m, unsigned ms, const char* file, int line);
/// @return TAVTHREAD_ERROR if the mutex is recursive and the caller does not hold it; the mutex
///         does not change.
TAV_API int tavXMutexUnlock_(TavMutex* m);

#define tavXMutexLock(m) tavXMutexLock_((m), __FILE__, __LINE__)
#define tavXMutexTryLock(m) tavXMutexTryLock_((m), __FILE__, __LINE__)
#define tavXMutexTimedLock(m, ms) tavXMutexTimedLock_((m), (ms), __FILE__, __LINE__)
#define tavXMutexBoundedLock(m, ms) tavXMutexBoundedLock_((m), (ms), __FILE__, __LINE__)
#define tavXMutexUnlock(m) tavXMutexUnlock_(m)

TAV_EXTERN_C_END

#endif
