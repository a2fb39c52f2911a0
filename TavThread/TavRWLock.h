#ifndef TAVTHREAD_TAVRWLOCK_H
#define TAVTHREAD_TAVRWLOCK_H

#include "TavThread/TavResult.h"

/// A read/write lock: many readers or one writer hold it. A waiting writer holds back new readers,
/// so a reader deadlocks if it locks again while a writer waits.
///
/// Threads: any thread may call any operation.
typedef struct TavRWLock TavRWLock;

/// Attribute tags of tavXRWLockCreate; a list ends with TavRWLockAttrEnd.
enum TavRWLockAttributes {
    TavRWLockAttrEnd = 0,
    TavRWLockAttrNoop = 1,
    TavRWLockAttrDisableSyntax = 2,  ///< no creation-syntax trace line
    TavRWLockAttrTraceObj = 3        ///< followed by a void*
};

TAV_EXTERN_C_BEGIN

/// @param out  receives the lock; null after a failure.
TAV_API int tavXRWLockCreate(TavRWLock** out, ...);
/// Requires: no thread waits for the lock.
TAV_API int tavXRWLockDestroy(TavRWLock* rw);

TAV_API int tavXRWLockReadLock(TavRWLock* rw);
/// @return TAVTHREAD_BUSY if a writer holds the lock or waits for it.
TAV_API int tavXRWLockTryReadLock(TavRWLock* rw);
/// If a waiter wakes up but another thread has taken the lock, the full timeout starts again.
/// @param ms  TAVTHREAD_INFINITE waits without limit.
/// @return TAVTHREAD_TIMEOUT when the time ran out.
TAV_API int tavXRWLockTimedReadLock(TavRWLock* rw, unsigned ms);
/// As tavXRWLockTimedReadLock, but the timeout never starts again and uses the monotonic clock.
/// @param ms  0 tries once, TAVTHREAD_INFINITE waits without limit.
/// @return TAVTHREAD_TIMEOUT when the time ran out, also for 0 ms.
TAV_API int tavXRWLockBoundedReadLock(TavRWLock* rw, unsigned ms);
TAV_API int tavXRWLockWriteLock(TavRWLock* rw);
/// @return TAVTHREAD_BUSY if any thread holds the lock.
TAV_API int tavXRWLockTryWriteLock(TavRWLock* rw);
/// As tavXRWLockTimedReadLock, for a write lock. If the writer gives up, readers that waited only
/// for this writer continue.
TAV_API int tavXRWLockTimedWriteLock(TavRWLock* rw, unsigned ms);
/// As tavXRWLockBoundedReadLock, for a write lock. If the writer gives up, readers that waited only
/// for this writer continue.
TAV_API int tavXRWLockBoundedWriteLock(TavRWLock* rw, unsigned ms);
/// Releases the caller's read or write lock. Does nothing if the lock is free.
TAV_API int tavXRWLockUnlock(TavRWLock* rw);

TAV_EXTERN_C_END

#endif
