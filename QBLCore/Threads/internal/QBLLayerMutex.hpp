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

/// QBLThreadMutex::lock() and unlock() without their fast paths. They take the layer's mutex, so
/// that the fast path of the recursive mutex has one pointer less to keep.
void qblMutexLockGeneral(TavMutex* mutex);
void qblMutexUnlockGeneral(TavMutex* mutex);

#endif
