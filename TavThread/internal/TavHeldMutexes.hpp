#ifndef TAVTHREAD_INTERNAL_TAVHELDMUTEXES_HPP
#define TAVTHREAD_INTERNAL_TAVHELDMUTEXES_HPP

#include "TavThread/TavMutex.h"
#include "TavThread/TavThread.h"

// Each thread record has a list of the tracking mutexes that its thread holds. Another thread may
// unlock or destroy such a mutex, so one lock guards all lists.

/// Adds a mutex that the calling thread has just locked to the thread's list. Returns
/// TAVTHREAD_ERROR if the thread has no record and cannot get one.
int tavHeldMutexesAdd(TavMutex* m, const char* file, int line);
void tavHeldMutexesRemove(TavMutex* m);
/// Clears the owner of each mutex in the list of a record that is about to be freed.
void tavHeldMutexesForget(TavThread* thread);

/// The head of a list of all held tracking mutexes. It is for debuggers, which cannot look up the
/// records of threads.
extern TavMutex* tavFirstHeldMutex;

#endif
