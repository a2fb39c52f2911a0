#ifndef TAVTHREAD_INTERNAL_TAVHELDMUTEXES_HPP
#define TAVTHREAD_INTERNAL_TAVHELDMUTEXES_HPP

#include "TavThread/TavMutex.h"
#include "TavThread/TavThread.h"

// Each thread record heads a list of the tracking mutexes that its thread holds. A mutex may be
// unlocked or destroyed by another thread, so one lock guards all lists.

/// Enters a mutex just locked under the calling thread; returns TAVTHREAD_ERROR if that has no
/// record.
int tavHeldMutexesAdd(TavMutex* m, const char* file, int line);
void tavHeldMutexesRemove(TavMutex* m);
/// Makes the mutexes of a record about to be freed ownerless.
void tavHeldMutexesForget(TavThread* thread);

/// The first of all tracking mutexes that are held, which are a list of their own: for debuggers,
/// which cannot ask threads for their records.
extern TavMutex* tavFirstHeldMutex;

#endif
