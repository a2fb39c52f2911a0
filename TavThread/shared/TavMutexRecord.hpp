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

/// The first member is the POSIX mutex, which condition waits are given. A record has its cache
/// lines to itself, and what every lock touches in the first: contention would pay for a second.
struct alignas(64) TavMutex {
    pthread_mutex_t native;
    unsigned flags = 0;  // does not change while the mutex is in use
    void* traceObj = nullptr;
    // Who holds a tracking mutex; guarded by the lock of the lists of held mutexes.
    const char* file = nullptr;
    int line = 0;
    TavThread* owner = nullptr;
    TavMutex* previous = nullptr;
    TavMutex* next = nullptr;
    // Its neighbours among all that are held.
    TavMutex* heldBefore = nullptr;
    TavMutex* heldAfter = nullptr;
};

/// A byte of each thread; its address tells threads apart at the cost of one instruction.
extern __thread char tavThreadMark __attribute__((tls_model("initial-exec"), visibility("hidden")));

/// No lock guards holder and count. Only the holder ever stores its own mark, and takes it out
/// before it unlocks; so a thread that reads its own mark is the holder, and one that is not may
/// read anything else, however stale, but never that. The count is touched by the holder alone,
/// and the POSIX mutex orders one holder's accesses before the next one's. A lock of its own
/// would decide every comparison in the same way.
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

/// The flags that make a mutex more than the POSIX one.
inline unsigned tavMutexExtras(const TavMutex* m) {
    return m->flags & (kTavMutexRecursive | kTavMutexTracking);
}

/// Takes the POSIX mutex if it is free. Whoever finds it taken waits a little, awake, before going
/// to sleep, which pthread_mutex_lock would do at once. The thread sanitizer is given that call: it
/// learns the order of locks from nothing else.
inline bool tavMutexTakeFree(TavMutex* m) {
#ifdef __SANITIZE_THREAD__
    return pthread_mutex_lock(&m->native) == 0;
#else
    return pthread_mutex_trylock(&m->native) == 0;
#endif
}

/// Takes a free mutex that is the POSIX one and no more; the rest stays with the general operation,
/// out of line, so that it costs the plain mutex not even a saved register. Likewise the others.
/// @return false if the general operation is to decide.
inline bool tavMutexLockPlain(TavMutex* m) {
    return __builtin_expect(tavMutexExtras(m) == 0, 1) && __builtin_expect(tavMutexTakeFree(m), 1);
}

inline bool tavMutexTryLockPlain(TavMutex* m) {
    return tavMutexExtras(m) == 0 && pthread_mutex_trylock(&m->native) == 0;
}

/// The POSIX call cannot fail for such a mutex, so that the caller can end in it.
inline bool tavMutexUnlockPlain(TavMutex* m) {
    if (__builtin_expect(tavMutexExtras(m) != 0, 0)) return false;
    pthread_mutex_unlock(&m->native);
    return true;
}

/// The same for a free mutex, or one that the caller holds, that is recursive and no more.
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
    if (pthread_mutex_unlock(&m->native) == 0) return true;
    r->setHolder(&tavThreadMark);
    return false;
}

#endif
