#ifndef TAVTHREAD_TAVRESULT_H
#define TAVTHREAD_TAVRESULT_H

#include "TavThread/TavExport.h"

/// Result codes of the thread layer. No operation returns an errno value. The code -7 is not used.
enum TavThreadResult {
    TAVTHREAD_OK = 0,
    TAVTHREAD_BUSY = 1,           ///< a try operation found the object taken
    TAVTHREAD_ERROR = -1,         ///< a system error that has no other code here
    TAVTHREAD_NOMEM = -2,         ///< out of memory
    TAVTHREAD_AGAIN = -3,         ///< a resource ran out, or a priority is out of range
    TAVTHREAD_DEADLOCK = -4,      ///< the call would deadlock
    TAVTHREAD_TIMEOUT = -5,       ///< the time ran out
    TAVTHREAD_NOTSUPPORTED = -6,  ///< not supported
    TAVTHREAD_INVALID = -8,       ///< a required pointer is null, or a state is out of range
    TAVTHREAD_BADATTR = -9,       ///< an attribute list has an unknown tag
    TAVTHREAD_NOTINIT = -10       ///< the layer is not initialised
};

/// A timeout without limit. All other timeouts are in milliseconds.
#define TAVTHREAD_INFINITE (~0U)

TAV_EXTERN_C_BEGIN

/// Maps a system error number to a result code.
///
/// Threads: any thread.
/// @param err  an errno value; -1 means the current value of errno.
/// @return TAVTHREAD_ERROR for an unknown error, and if err is -1 and errno is 0.
TAV_API int tavThread_MapError(int err);

TAV_EXTERN_C_END

#endif
