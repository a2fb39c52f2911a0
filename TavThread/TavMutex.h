#ifndef TAVTHREAD_TAVMUTEX_H
#define TAVTHREAD_TAVMUTEX_H

#include "TavThread/TavResult.h"

/// A mutex: plain, recursive or keeping track of its owner, as its attributes say.
///
/// Threads: any thread may call any operation; only the holder unlocks. Usable before the layer
/// is initialised, except that a tracking mutex cannot record its owner then.
typedef struct TavMutex TavMutex;

/// Attribute tags of tavXMutexCreate; a list ends with TavMutexAttrEnd.
enum TavMutexAttributes {
    TavMutexAttrEnd = 0,
    TavMutexAttrNoop = 1,
    TavMutexAttrDisableSyntax = 2,  ///< no creation-syntax trace line
    TavMutexAttrTraceObj = 3,       ///< followed by a void*
    TavMutexAttrRecursive = 4,      ///< the holder may lock it again, and unlocks as often
    TavMutexAttrTrackOwner = 5,     ///< records who locked it, and in which file and line
    TavMutexAttrFlag6 = 6           ///< stored, without effect
};

TAV_EXTERN_C_BEGIN

/// @param out  receives the mutex; null after a failure.
TAV_API int tavXMutexCreate(TavMutex** out, ...);
/// Frees the mutex in any case.
/// @return TAVTHREAD_BUSY if it was still locked.
TAV_API int tavXMutexDestroy(TavMutex* m);

/// @return TAVTHREAD_ERROR if a tracking mutex was taken by a thread that can have no record; it
///         is locked nevertheless, and the caller must unlock it. Holds for all three ways to lock.
TAV_API int tavXMutexLock_(TavMutex* m, const char* file, int line);
/// @return TAVTHREAD_BUSY if another thread holds it.
TAV_API int tavXMutexTryLock_(TavMutex* m, const char* file, int line);
/// Polls about every 100 ms; the last sleep is followed by no further try, so that the whole call
/// may take up to twice the timeout.
/// @param ms  0 tries once, TAVTHREAD_INFINITE waits without limit.
/// @return TAVTHREAD_TIMEOUT when the time ran out.
TAV_API int tavXMutexTimedLock_(TavMutex* m, unsigned ms, const char* file, int line);
/// @return TAVTHREAD_ERROR, changing nothing, if the mutex is recursive and not the caller's.
TAV_API int tavXMutexUnlock_(TavMutex* m);

#define tavXMutexLock(m) tavXMutexLock_((m), __FILE__, __LINE__)
#define tavXMutexTryLock(m) tavXMutexTryLock_((m), __FILE__, __LINE__)
#define tavXMutexTimedLock(m, ms) tavXMutexTimedLock_((m), (ms), __FILE__, __LINE__)
#define tavXMutexUnlock(m) tavXMutexUnlock_(m)

TAV_EXTERN_C_END

#endif
