#ifndef TAVTHREAD_TAVTHREAD_H
#define TAVTHREAD_TAVTHREAD_H

#include <pthread.h>
#include <stddef.h>

#include "TavThread/TavResult.h"

/// The record of a thread. tavXThreadCreate makes one for the thread that it starts. Any other
/// thread gets an adopted record at its first call that needs one, such as tavXThreadSelf.
///
/// Suspending and cancelling are requests. They take effect at the target thread's next checkpoint,
/// which is its call of tavXThreadState(NULL).
///
/// Threads: any thread may call any operation on any record that has not been destroyed.
/// The creator owns the record of a started thread until it calls tavXThreadDestroy, even after the
/// thread has ended. An adopted record is freed at the latest when its thread ends.
typedef struct TavThread TavThread;

enum TavThreadState {
    TavThreadStateInitial = 0,  ///< not started, or finished
    TavThreadStateRunning = 1,
    TavThreadStateSuspended = 2,
    TavThreadStateCanceling = 3,  ///< cancelled: its routine should return soon
    TavThreadStateException = 4   ///< failed to start, or its routine threw
};

/// How a thread ended, as tavXThreadAutopsy reports it.
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
    TavThreadAttrTraceObjInheritable = 4,    ///< threads that it creates inherit its trace object
    TavThreadAttrCancelFlag = 5,             ///< followed by an int*; a non-zero value cancels
    TavThreadAttrCancelFlagInheritable = 6,  ///< threads that it creates inherit its cancel flag
    TavThreadAttrSuspended = 7,              ///< waits for tavXThreadContinue before its routine
    TavThreadAttrDetached = 8,               ///< cannot be joined
    TavThreadAttrStackSize = 9               ///< followed by an unsigned: size in bytes
};

TAV_EXTERN_C_BEGIN

/// @name Start and stop of the layer
/// @{

/// Starts the layer. Calls are counted; only the first one does the work. Mutexes and the other
/// lock objects also work while the layer is not started.
/// @param name  not used.
TAV_API int tavThreadProcessInitialize(const char* name TAV_DEFAULT(0));
/// Undoes one call of tavThreadProcessInitialize. The last such call stops the layer.
/// @return TAVTHREAD_NOTINIT if there is no call to undo.
TAV_API int tavThreadProcessTerminate(const char* name TAV_DEFAULT(0));
/// Gives the calling thread an adopted record if it has no record.
TAV_API int tavXThreadInitialize(void);
/// Frees the calling thread's record if it is adopted. Without this call, an adopted record is
/// freed when its thread ends.
TAV_API int tavXThreadTerminate(void);
/// @}

/// @name Creating, joining and destroying
/// @{

/// Starts a thread that runs routine(arg). An exception that leaves the routine ends only this
/// thread. The attribute list ends with TavThreadAttrEnd. A stack size below the system's default
/// is raised to the default. The new thread inherits the caller's trace object and cancel flag if
/// they are inheritable and the list does not set them.
/// @param out  receives the record before the thread starts; null after a failure. The caller must
///             pass the record to tavXThreadDestroy. May be null for a detached thread only. Until
///             this call returns, no thread except the new one may use the record.
TAV_API int tavXThreadCreate(void* (*routine)(void*), void* arg, TavThread** out, ...);
/// Gives up the record. A thread that still runs continues as a detached thread.
/// @return TAVTHREAD_ERROR for the adopted record of another thread.
TAV_API int tavXThreadDestroy(TavThread* thread);
/// Waits until the thread ends. A thread can be joined once. If the caller is cancelled while it
/// waits, the thread can still be joined.
/// @param thread  null means the caller.
/// @param value   receives the return value of the routine, null if the routine threw; may be null.
/// @return TAVTHREAD_DEADLOCK if the thread is the caller or has an adopted record; TAVTHREAD_ERROR
///         if it is detached or already joined.
TAV_API int tavXThreadJoin(TavThread* thread, void** value);
/// @}

/// @name Queries
/// @{

/// Returns the caller's record. Adopts a caller that has no record. Returns null if the layer is
/// not initialised or the record cannot be made.
TAV_API TavThread* tavXThreadSelf(void);
TAV_API int tavXThreadEqual(TavThread* a, TavThread* b);
TAV_API int tavXThreadYield(void);
/// Returns the thread's number, counted from 1.
/// @param thread  null means the caller.
/// @return 0 if thread is null and the caller has no record and cannot get one.
TAV_API unsigned tavXThreadId(TavThread* thread);
/// Writes the address of the record and the system's thread handle as "%8x(%8x)". As with strncpy,
/// the text is not null-terminated if n is too small; otherwise the rest of buf is filled with
/// nulls.
/// @param thread  null writes the address 0 and the caller's handle.
TAV_API char* tavXThreadStrId(TavThread* thread, char* buf, size_t n);
/// Returns 1 until the thread has finished, then 0. Returns 1 for null.
TAV_API int tavXThreadAlive(TavThread* thread);
/// Returns how the thread ended, or TavThreadExitAlive if it has not ended.
/// @param thread  null means the caller.
TAV_API int tavXThreadAutopsy(TavThread* thread);
/// Returns the return value of the routine. Returns null if thread is null.
TAV_API void* tavXThreadExitStatus(TavThread* thread);
/// @}

/// @name Suspending and cancelling
/// @{

/// Returns the thread's state. If thread is null, the call is a checkpoint of the caller: it
/// suspends the caller if requested, notes a cancellation, yields, and returns the caller's state.
TAV_API int tavXThreadState(TavThread* thread);
/// Asks a running thread to stop at its next checkpoint. Has no effect in other states. A thread
/// that was continued and has not woken up yet first leaves its present checkpoint, and stops at
/// the next one.
TAV_API int tavXThreadSuspend(TavThread* thread);
/// Continues a suspended thread, or withdraws a suspend request that has not taken effect.
TAV_API int tavXThreadContinue(TavThread* thread);
/// Asks a thread to finish, and wakes it if it is suspended. A thread without checkpoints does not
/// notice the request. A thread that has not started its routine yet never starts it.
TAV_API int tavXThreadCancel(TavThread* thread);
/// Sets or removes the thread's cancel flag: a non-zero value of *flag cancels the thread.
/// @param thread  null means the caller.
/// @param flag    every later checkpoint reads *flag; null removes the flag.
TAV_API int tavXThreadSetCancel(TavThread* thread, int* flag, int inheritable);
/// Withdraws a cancel request to the caller, and sets its state back from canceling to running.
TAV_API int tavXThreadCancelReset(void);
/// @}

/// @name Priority
/// @{

/// Adds delta to the thread's scheduling priority.
/// @return TAVTHREAD_AGAIN if the priority cannot be read or would leave the scheduler's range.
TAV_API int tavXThreadAdjustPriority(TavThread* thread, long delta);
/// @}

TAV_EXTERN_C_END

#endif
