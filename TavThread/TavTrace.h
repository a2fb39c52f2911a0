#ifndef TAVTHREAD_TAVTRACE_H
#define TAVTHREAD_TAVTRACE_H

#include "TavThread/TavExport.h"

/// The subject of a trace line.
enum TavTraceCategory {
    TavTraceThread = 1,  ///< threads and state traps
    TavTraceMutex = 4,
    TavTraceSemaphore = 8,
    TavTraceCondition = 16,
    TavTraceEvent = 32,
    TavTraceRWLock = 64,
    TavTraceSyntax = 256  ///< the creation of any object, as a statement
};

TAV_EXTERN_C_BEGIN

/// Receives every trace line of the layer. The library's own function emits nothing. A program that
/// defines a function of this name receives the lines instead. The layer formats lines only in that
/// case.
///
/// The function must not throw, because the operations that trace are C functions. It must not use
/// `QBLCore` or `i18n/cpp`: they create locks and threads while they hold their own locks.
///
/// Threads: called on the thread that traces, which holds no lock of the layer.
/// @param traceObj  the trace object of the new object, else the trace object of the thread that
///                  creates the new object, else null.
/// @param categoryMask  one TavTraceCategory.
TAV_API void tavThreadTraceOutput(void* traceObj, unsigned long categoryMask, const char* format,
                                  ...) __attribute__((format(printf, 3, 4)));

/// Sets the calling thread's trace object. If obj is not null and `inheritable` is non-zero,
/// threads that this thread creates inherit its trace object from now on. A later call with
/// `inheritable` 0 does not undo this.
/// @return TAVTHREAD_ERROR if the calling thread has no record.
TAV_API int tavXThreadSetTraceObj(void* obj, int inheritable);
/// Returns the calling thread's trace object, or null.
TAV_API void* tavXThreadGetTraceObj(void);

TAV_EXTERN_C_END

#endif
