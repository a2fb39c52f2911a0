#ifndef TAVTHREAD_TAVTHREAD_H
#define TAVTHREAD_TAVTHREAD_H

#include <pthread.h>
#include <stddef.h>

#include "TavThread/TavResult.h"

/// A thread: one that tavXThreadCreate started, or the adopted record of any other thread that
/// asked for itself. Suspension and cancellation are requests, which take effect at the target's
/// next checkpoint, tavXThreadState(NULL).
///
/// Threads: any thread may call any operation on any record that has not been destroyed.
/// A started thread's record is its creator's until tavXThreadDestroy, also after its end; an
/// adopted one goes with its thread.
typedef struct TavThread TavThread;

enum TavThreadState {
    TavThreadStateInitial = 0,  ///< not started, or finished
    TavThreadStateRunning = 1,
    TavThreadStateSuspended = 2,
    TavThreadStateCanceling = 3,  ///< expected to wind up
    TavThreadStateException = 4   ///< failed to start, or its routine threw
};

/// What tavXThreadAutopsy reports.
enum TavThreadExitReason {
    TavThreadExitNormal = 0,
    TavThreadExitCanceled = 1,
    TavThreadExitException = 2,
    TavThreadExitAlive = 3
};

/// Attribute tags of tavXThreadCreate; a list ends with TavThreadAttrEnd.
enum TavThreadAttributes {
    TavThreadAttrEnd = 0,
    TavThreadAttrNoop = 1,
    TavThreadAttrDisableSyntax = 2,          ///< no creation-syntax trace line
    TavThreadAttrTraceObj = 3,               ///< followed by a void*
    TavThreadAttrTraceObjInheritable = 4,    ///< threads it creates get its trace object
    TavThreadAttrCancelFlag = 5,             ///< followed by an int*; non-zero there cancels
    TavThreadAttrCancelFlagInheritable = 6,  ///< threads it creates get its cancel flag
    TavThreadAttrSuspended = 7,              ///< waits for tavXThreadContinue before its routine
    TavThreadAttrDetached = 8,               ///< cannot be joined
    TavThreadAttrStackSize = 9               ///< followed by an unsigned: bytes
};

TAV_EXTERN_C_BEGIN

/// @name Start and stop of the layer
/// @{

/// Starts the layer; calls are counted. Mutexes and the other lock objects work without.
/// @param name  not used.
TAV_API int tavThreadProcessInitialize(const char* name TAV_DEFAULT(0));
/// Undoes one start; the last one stops the layer.
/// @return TAVTHREAD_NOTINIT if there is none left to undo.
TAV_API int tavThreadProcessTerminate(const char* name TAV_DEFAULT(0));
/// Makes sure that the calling thread has a record.
TAV_API int tavXThreadInitialize(void);
/// Frees the calling thread's record if it is an adopted one; its exit would do that too.
TAV_API int tavXThreadTerminate(void);
/// @}

/// @name Creating, joining and destroying
/// @{

/// Starts a thread on routine(arg). An exception that leaves the routine ends the thread alone.
/// @param out  receives the record before the thread starts, null after a failure; to be given
///             to tavXThreadDestroy. May be null for a detached thread only. Threads other than the
///             new one may use the record only after this has returned.
/// The attributes end with TavThreadAttrEnd. A stack size below the system's default is raised to
/// it. Trace object and cancel flag come from the caller where inheritable and not given.
TAV_API int tavXThreadCreate(void* (*routine)(void*), void* arg, TavThread** out, ...);
/// Gives the record back; a thread that still runs goes on, detached.
/// @return TAVTHREAD_ERROR for the adopted record of another thread.
TAV_API int tavXThreadDestroy(TavThread* thread);
/// Waits for the thread's end, once. A caller that is cancelled meanwhile has not joined.
/// @param thread  null is the caller.
/// @param value   receives what the routine returned, null if it threw; may be null.
/// @return TAVTHREAD_DEADLOCK for the caller itself and for adopted records, TAVTHREAD_ERROR for a
///         thread that is detached or joined.
TAV_API int tavXThreadJoin(TavThread* thread, void** value);
/// @}

/// @name The calling thread, and what is known of one
/// @{

/// The caller's record, adopted if need be; null while the layer is not initialised.
TAV_API TavThread* tavXThreadSelf(void);
TAV_API int tavXThreadEqual(TavThread* a, TavThread* b);
TAV_API int tavXThreadYield(void);
/// The thread's number, counted from 1.
/// @param thread  null is the caller; 0 is returned if that has no record.
TAV_API unsigned tavXThreadId(TavThread* thread);
/// Writes record address and system handle as "%8x(%8x)" with the rules of strncpy: no NUL if n is
/// too small, zeros up to n otherwise.
/// @param thread  null writes the address 0 and the caller's handle.
TAV_API char* tavXThreadStrId(TavThread* thread, char* buf, size_t n);
/// 1 until the thread has finished, then 0; 1 for null.
TAV_API int tavXThreadAlive(TavThread* thread);
/// How the thread ended, TavThreadExitAlive if it has not.
TAV_API int tavXThreadAutopsy(TavThread* thread);
/// What the routine returned; null for null.
TAV_API void* tavXThreadExitStatus(TavThread* thread);
/// @}

/// @name Suspending and cancelling
/// @{

/// The thread's state. For null it is the caller's checkpoint: stops there while it is suspended,
/// notes a cancellation, yields, and returns the caller's state.
TAV_API int tavXThreadState(TavThread* thread);
/// Asks a running thread to stop at its next checkpoint; no effect in another state. For a thread
/// that was continued and has not woken up yet, that is the one after.
TAV_API int tavXThreadSuspend(TavThread* thread);
/// Ends a suspension, or takes the request for one back.
TAV_API int tavXThreadContinue(TavThread* thread);
/// Asks a thread to wind up; wakes it if it is suspended. Not seen by a thread without checkpoints,
/// but one that has not reached its routine never starts it.
TAV_API int tavXThreadCancel(TavThread* thread);
/// @param thread  null is the caller.
/// @param flag    read at every checkpoint from now on; null takes it away.
TAV_API int tavXThreadSetCancel(TavThread* thread, int* flag, int inheritable);
/// Takes back a cancel request to the caller, and the state it led to.
TAV_API int tavXThreadCancelReset(void);
/// @}

/// @name Priority
/// @{

/// @return TAVTHREAD_AGAIN if the priority cannot be read or would leave the scheduler's range.
TAV_API int tavXThreadAdjustPriority(TavThread* thread, long delta);
/// @}

TAV_EXTERN_C_END

#endif
