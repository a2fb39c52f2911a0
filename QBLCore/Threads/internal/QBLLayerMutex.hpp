#ifndef QBLCORE_THREADS_INTERNAL_QBLLAYERMUTEX_HPP
#define QBLCORE_THREADS_INTERNAL_QBLLAYERMUTEX_HPP

#include "TavThread/TavMutex.h"
#include "TavThread/shared/TavMutexRecord.hpp"

/// Creates the layer's mutex for QBLThreadMutex and QBLThreadCriticalSection.
/// @return the layer's result; if it is not 0, *out is null.
inline int qblCreateMutex(TavMutex** out, bool trackOwner, bool recursive) {
    const int tracking = trackOwner ? TavMutexAttrTrackOwner : TavMutexAttrNoop;
    const int repeating = recursive ? TavMutexAttrRecursive : TavMutexAttrNoop;
    return tavXMutexCreate(out, tracking, repeating, TavMutexAttrEnd);
}

/// Do the same as QBLThreadMutex::lock() and unlock(), but without the fast path. The parameter is
/// the mutex of TavThread and not the object, so a caller need not save a pointer to the object
/// during its fast path.
void qblMutexLockGeneral(TavMutex* mutex);
void qblMutexUnlockGeneral(TavMutex* mutex);

#endif
