#ifndef TAVTHREAD_TAVSTATETRAP_H
#define TAVTHREAD_TAVSTATETRAP_H

#include "TavThread/TavThread.h"

/// Called when a thread enters a state. The thread that makes the change calls the routine without
/// holding a lock. Exceptions from the routine are dropped.
///
/// A suspended thread that is continued resumes only after the callbacks for Running have returned.
/// tavXThreadContinue first waits until the suspended thread's callbacks for Suspended have
/// returned. So a callback may change the state of its thread, but must not wait for another thread
/// that changes this state. A callback for Initial must not end the calling thread, which is
/// already ending.
typedef void (*TavStateRoutine)(void* arg, TavThread* thread, int newState);

/// A state callback that can be removed.
///
/// Threads: any thread may call any operation, but not on a trap that is being destroyed.
typedef struct TavStateTrap TavStateTrap;

/// Attribute tags of tavXThreadStateTrapCreate; a list ends with TavStateTrapAttrEnd.
enum TavStateTrapAttributes {
    TavStateTrapAttrEnd = 0,
    TavStateTrapAttrNoop = 1,
    TavStateTrapAttrDisableSyntax = 2,  ///< no creation-syntax trace line
    TavStateTrapAttrTraceObj = 3        ///< followed by a void*
};

TAV_EXTERN_C_BEGIN

/// Adds a callback that cannot be removed. The callback added last is called first. Adds nothing if
/// the routine is null.
/// @return TAVTHREAD_INVALID for a null thread or a state out of range.
TAV_API int tavXThreadStateCallback(TavThread* thread, int state, TavStateRoutine routine,
                                    void* arg);

/// @param out  receives the trap; null after a failure.
TAV_API int tavXThreadStateTrapCreate(TavStateTrap** out, int state, ...);
/// Disarms and frees the trap. State changes that begin afterwards do not call its routine.
TAV_API int tavXThreadStateTrapDestroy(TavStateTrap* trap);
/// Disarms the trap, then arms it for the thread. A null routine only disarms it.
TAV_API int tavXThreadStateTrapSet(TavStateTrap* trap, TavThread* thread, TavStateRoutine routine,
                                   void* arg);
/// Finds the trap that was armed before this one for the same thread and state.
/// @param out  receives the trap; null if there is no such trap.
TAV_API int tavXThreadStateTrapNext(TavStateTrap* trap, TavStateTrap** out);

TAV_EXTERN_C_END

#endif
