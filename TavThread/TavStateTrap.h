#ifndef TAVTHREAD_TAVSTATETRAP_H
#define TAVTHREAD_TAVSTATETRAP_H

#include "TavThread/TavThread.h"

/// Called when a thread enters a state, on the thread that made the change and under no lock.
/// Exceptions are swallowed. A thread that is continued goes on only after the callbacks for
/// Running have returned; whoever continues it waits for its callbacks for Suspended first. So a
/// callback must not wait for another thread that changes the state of the same one; it may change
/// that state itself. One for Initial must not end a thread that ends already.
typedef void (*TavStateRoutine)(void* arg, TavThread* thread, int newState);

/// A state callback that can be taken away again.
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

/// Adds a callback for good; the one added last is called first. A null routine adds nothing.
/// @return TAVTHREAD_INVALID for a null thread or a state out of range.
TAV_API int tavXThreadStateCallback(TavThread* thread, int state, TavStateRoutine routine,
                                    void* arg);

/// @param out  receives the trap; null after a failure.
TAV_API int tavXThreadStateTrapCreate(TavStateTrap** out, int state, ...);
/// Disarms the trap: state changes that begin afterwards do not call its routine.
TAV_API int tavXThreadStateTrapDestroy(TavStateTrap* trap);
/// Arms the trap for this thread instead of where it was before; a null routine only disarms.
TAV_API int tavXThreadStateTrapSet(TavStateTrap* trap, TavThread* thread, TavStateRoutine routine,
                                   void* arg);
/// The trap that was armed before this one for the same thread and state.
/// @param out  receives null after the last one.
TAV_API int tavXThreadStateTrapNext(TavStateTrap* trap, TavStateTrap** out);

TAV_EXTERN_C_END

#endif
