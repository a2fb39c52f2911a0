#ifndef TAVTHREAD_TAVRESULT_H
#define TAVTHREAD_TAVRESULT_H

#include "TavThread/TavExport.h"

/// Result codes of the thread layer. No operation ever returns an errno value, and -7 is not used.
enum TavThreadResult {
    TAVTHREAD_OK = 0,
    TAVTHREAD_BUSY = 1,           ///< a try operation found the object taken
    TAVTHREAD_ERROR = -1,         ///< a system error that has no code of its own
    TAVTHREAD_NOMEM = -2,         ///< out of memory
    TAVTHREAD_AGAIN = -3,         ///< out of another resource; a priority out of range
    TAVTHREAD_DEADLOCK = -4,      ///< the call would wait for itself
    TAVTHREAD_TIMEOUT = -5,       ///< the time ran out
    TAVTHREAD_NOTSUPPORTED = -6,  ///< not supported
    TAVTHREAD_INVALID = -8,       ///< a required pointer is null, or a state number out of range
    TAVTHREAD_BADATTR = -9,       ///< unknown tag in an attribute list
    TAVTHREAD_NOTINIT = -10       ///< the layer is not initialised
};

/// A timeout of this value waits without limit; every other is milliseconds.
#define TAVTHREAD_INFINITE (~0U)

TAV_EXTERN_C_BEGIN

/// Maps a system error number to a result code.
///
/// Threads: any thread.
/// @param err  an errno value; -1 takes errno itself, where 0 then counts as an unknown error.
TAV_API int tavThread_MapError(int err);

TAV_EXTERN_C_END

#endif
