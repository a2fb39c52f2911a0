#ifndef TAVTHREAD_SHARED_TAVMUTEXRECORD_HPP
#define TAVTHREAD_SHARED_TAVMUTEXRECORD_HPP

#include <pthread.h>

#include <atomic>
#include <climits>

#include "TavThread/TavMutex.h"
#include "TavThread/TavThread.h"

enum TavMutexFlags : unsigned {
    kTavMutexInitialized = 1,
    kTavMutexSyntaxTraced = 2,
    kTavMutexRecursive = 4,
    kTavMutexTracking = 8,
    kTavMutexFlag6 = 16
};

/// The first member is the POSIX mutex, which condition waits use. A record has cache lines of its
/// own. The fields that every lock operation uses are in its first line, because under contention a
/// second line costs extra time.
struct alignas(64) TavMutex {
    pthread_mutex_t native;
    unsigned flags = 0;  // does not change while the mutex is in use
    void* traceObj = nullptr;
    // The holder of a tracking mutex; guarded by the lock of the lists of held mutexes.
    const char* file = nullptr;
    int line = 0;
    TavThread* owner = nullptr;
    TavMutex* previous = nullptr;
    TavMutex* next = nullptr;
    // Neighbours in the list of all held tracking mutexes.
    TavMutex* heldBefore = nullptr;
    TavMutex* heldAfter = nullptr;
};

/// Each thread has its own byte. The byte's address identifies the thread and costs one
/// instruction.
extern __thread char tavThreadMark __attribute__((tls_model("initial-exec"), visibility("hidden")));

/// No lock guards `holder` and `count`. Only the holder stores its own mark, and it removes the
/// mark before it unlocks. So a thread that reads its own mark is the holder. Other threads may
/// read any stale value, but never their own mark. Only the holder uses the count, and the POSIX
/// mutex orders one holder's accesses before the next holder's accesses. A lock for these fields
/// would not change the result of any comparison.
struct TavRecursiveMutex : TavMutex {
    std::atomic<const char*> holder{nullptr};
    int count = 0;  // locks beyond the first; 0 while the mutex is free

    bool mine() const { return holder.load(std::memory_order_relaxed) == &tavThreadMark; }
    void setHolder(const char* mark) { holder.store(mark, std::memory_order_relaxed); }
};

int tavMutexLockGeneral(TavMutex* m, const char* file, int line);
int tavMutexTryLockGeneral(TavMutex* m, const char* file, int line);
int tavMutexUnlockGeneral(TavMutex* m);

inline pthread_mutex_t* tavMutexNative(TavMutex* m) { return &m->native; }

/// Returns the flags that require more than the POSIX mutex.
inline unsigned tavMutexExtras(const TavMutex* m) {
    return m->flags & (kTavMutexRecursive | kTavMutexTracking);
}

/// Takes the POSIX mutex if it is free. Otherwise the caller spins briefly before it sleeps, while
/// pthread_mutex_lock would sleep at once. Builds with ThreadSanitizer call pthread_mutex_lock,
/// because ThreadSanitizer learns the order of locks only from that call.
inline bool tavMutexTakeFree(TavMutex* m) {
#ifdef __SANITIZE_THREAD__
    return pthread_mutex_lock(&m->native) == 0;
#else
    return pthread_mutex_trylock(&m->native) == 0;
#endif
}

/// Takes a free mutex that is neither recursive nor tracking. A general operation, which is not
/// inlined, handles all other cases. So a plain mutex does not even cost a saved register. The
/// functions below work in the same way.
/// @return false if the general operation must decide.
inline bool tavMutexLockPlain(TavMutex* m) {
    return __builtin_expect(tavMutexExtras(m) == 0, 1) && __builtin_expect(tavMutexTakeFree(m), 1);
}

inline bool tavMutexTryLockPlain(TavMutex* m) {
    return tavMutexExtras(m) == 0 && pthread_mutex_trylock(&m->native) == 0;
}

/// Unlocks a mutex that is neither recursive nor tracking. The POSIX call cannot fail for such a
/// mutex. Because its result is not used, the compiler can make it a tail call of the caller.
inline bool tavMutexUnlockPlain(TavMutex* m) {
    if (__builtin_expect(tavMutexExtras(m) != 0, 0)) return false;
    pthread_mutex_unlock(&m->native);
    return true;
}

/// Takes a recursive mutex that is not tracking, if it is free or the caller holds it.
inline bool tavMutexLockRecursive(TavMutex* m) {
    if (tavMutexExtras(m) != kTavMutexRecursive) return false;
    TavRecursiveMutex* r = static_cast<TavRecursiveMutex*>(m);
    const char* const self = &tavThreadMark;
    if (r->holder.load(std::memory_order_relaxed) == self) {
        if (r->count == INT_MAX) return false;
        ++r->count;
        return true;
    }
    if (!tavMutexTakeFree(m)) return false;
    r->setHolder(self);
    return true;
}

inline bool tavMutexUnlockRecursive(TavMutex* m) {
    if (tavMutexExtras(m) != kTavMutexRecursive) return false;
    TavRecursiveMutex* r = static_cast<TavRecursiveMutex*>(m);
    if (!r->mine()) return false;
    if (r->count > 0) {
        --r->count;
        return true;
    }
    r->setHolder(nullptr);
    pthread_mutex_unlock(&m->native);  // cannot fail, because the caller holds the mutex
    return true;
}

#endif
