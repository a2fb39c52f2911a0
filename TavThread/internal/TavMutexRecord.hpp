#ifndef TAVTHREAD_INTERNAL_TAVMUTEXRECORD_HPP
#define TAVTHREAD_INTERNAL_TAVMUTEXRECORD_HPP

#include <pthread.h>

#include <atomic>

#include "TavThread/TavMutex.h"
#include "TavThread/TavThread.h"

enum TavMutexFlags : unsigned {
    kTavMutexInitialized = 1,
    kTavMutexSyntaxTraced = 2,
    kTavMutexRecursive = 4,
    kTavMutexTracking = 8,
    kTavMutexFlag6 = 16
};

/// The first member is the POSIX mutex, which condition waits are given.
struct TavMutex {
    pthread_mutex_t native;
    unsigned flags = 0;  // does not change while the mutex is in use
    void* traceObj = nullptr;
    // Who holds a tracking mutex; guarded by the lock of the lists of held mutexes.
    const char* file = nullptr;
    int line = 0;
    TavThread* owner = nullptr;
    TavMutex* previous = nullptr;
    TavMutex* next = nullptr;
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

/// tavXMutexLock_ at the cost of the POSIX mutex when that is all there is, and of little more
/// when it is recursive; likewise the others. File and line matter to tracking mutexes only.
inline int tavMutexLockFast(TavMutex* m, const char* file, int line) {
    if (m == nullptr || (m->flags & kTavMutexTracking) != 0)
        return tavMutexLockGeneral(m, file, line);
    if ((m->flags & kTavMutexRecursive) == 0) {
        if (pthread_mutex_lock(&m->native) == 0) return TAVTHREAD_OK;
    } else {
        TavRecursiveMutex* r = static_cast<TavRecursiveMutex*>(m);
        const char* const self = &tavThreadMark;
        if (r->holder.load(std::memory_order_relaxed) != self &&
            pthread_mutex_lock(&m->native) == 0) {
            r->setHolder(self);
            return TAVTHREAD_OK;
        }
    }
    return tavMutexLockGeneral(m, nullptr, 0);
}

inline int tavMutexTryLockFast(TavMutex* m, const char* file, int line) {
    if (m != nullptr && tavMutexExtras(m) == 0 && pthread_mutex_trylock(&m->native) == 0)
        return TAVTHREAD_OK;
    return tavMutexTryLockGeneral(m, file, line);
}

inline int tavMutexUnlockFast(TavMutex* m) {
    if (m != nullptr && tavMutexExtras(m) == 0) {
        if (pthread_mutex_unlock(&m->native) == 0) return TAVTHREAD_OK;
    } else if (m != nullptr && tavMutexExtras(m) == kTavMutexRecursive) {
        TavRecursiveMutex* r = static_cast<TavRecursiveMutex*>(m);
        if (r->mine() && r->count == 0) {
            r->setHolder(nullptr);
            if (pthread_mutex_unlock(&m->native) == 0) return TAVTHREAD_OK;
            r->setHolder(&tavThreadMark);
        }
    }
    return tavMutexUnlockGeneral(m);
}

#endif
