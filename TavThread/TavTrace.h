#ifndef TAVTHREAD_TAVTRACE_H
#define TAVTHREAD_TAVTRACE_H

#include "TavThread/TavExport.h"

/// What a trace line is about.
enum TavTraceCategory {
    TavTraceThread = 1,  ///< threads and state traps
    TavTraceMutex = 4,
    TavTraceSemaphore = 8,
    TavTraceCondition = 16,
    TavTraceEvent = 32,
    TavTraceRWLock = 64,
    TavTraceSyntax = 256  ///< any creation, written as a statement
};

TAV_EXTERN_C_BEGIN

/// Receives every trace line of the layer. The library's own emits nothing; a program that
/// defines a function of this name gets the lines instead. Lines are composed only then.
///
/// It must not throw: the operations that trace are C functions.
///
/// Threads: called on the thread that traces, under no lock of the layer.
/// @param traceObj      the object's trace object, else that of the thread that creates it, or
///                      null.
/// @param categoryMask  one TavTraceCategory.
TAV_API void tavThreadTraceOutput(void* traceObj, unsigned long categoryMask, const char* format,
                                  ...) __attribute__((format(printf, 3, 4)));

/// Sets the calling thread's trace object. A non-null one with `inheritable` set passes to the
/// threads that this thread creates; clearing `inheritable` never takes an earlier mark back.
/// @return TAVTHREAD_ERROR if the calling thread has no record.
TAV_API int tavXThreadSetTraceObj(void* obj, int inheritable);
/// The calling thread's trace object, or null.
TAV_API void* tavXThreadGetTraceObj(void);

TAV_EXTERN_C_END

#endif
