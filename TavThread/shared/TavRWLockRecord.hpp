#ifndef TAVTHREAD_SHARED_TAVRWLOCKRECORD_HPP
#define TAVTHREAD_SHARED_TAVRWLOCKRECORD_HPP

#include <pthread.h>

#include <atomic>
#include <cstdint>

#include "TavThread/TavRWLock.h"
#include "TavThread/shared/TavHandOver.hpp"

constexpr std::uint32_t kTavRWWaiters = 0x80000000U;
constexpr std::uint32_t kTavRWWriter = 0x40000000U;
constexpr std::uint32_t kTavRWMostReaders = 0x3fffffffU;

/// The state word counts the readers or holds the writer mark. While no thread waits, the lock
/// consists only of this word, which changes by compare-and-swap. The slow path takes the mutex and
/// sets the waiters mark. While the mark is set, only the holder of the mutex changes the word. The
/// holder clears the mark when it gives up the mutex and no thread waits.
struct TavRWLock {
    std::atomic<std::uint32_t> word{0};
    // Guards the fields below.
    pthread_mutex_t mutex;
    pthread_cond_t readers;
    int waitingReaders = 0;
    pthread_cond_t writers;
    int waitingWriters = 0;
};

int tavRWLockReadLockGeneral(TavRWLock* rw, unsigned ms);
int tavRWLockTryReadLockGeneral(TavRWLock* rw);
int tavRWLockWriteLockGeneral(TavRWLock* rw, unsigned ms);
int tavRWLockTryWriteLockGeneral(TavRWLock* rw);
int tavRWLockUnlockGeneral(TavRWLock* rw);

/// Adds a reader if no writer holds the lock and no thread waits.
inline bool tavRWLockEnterRead(TavRWLock* rw) {
    std::uint32_t word = rw->word.load(std::memory_order_relaxed);
    while (word < kTavRWMostReaders)
        if (rw->word.compare_exchange_weak(word, word + 1, std::memory_order_acquire,
                                           std::memory_order_relaxed)) {
            tavTaken(rw);
            return true;
        }
    return false;
}

/// Sets the writer mark if the lock is free and no thread waits.
inline bool tavRWLockEnterWrite(TavRWLock* rw) {
    std::uint32_t free = 0;
    if (!rw->word.compare_exchange_strong(free, kTavRWWriter, std::memory_order_acquire,
                                          std::memory_order_relaxed))
        return false;
    tavTaken(rw);
    return true;
}

/// tavXRWLockTimedReadLock, but with only one atomic operation if the lock is available. The
/// functions below work in the same way.
inline int tavRWLockReadLockFast(TavRWLock* rw, unsigned ms) {
    if (rw != nullptr && tavRWLockEnterRead(rw)) return TAVTHREAD_OK;
    return tavRWLockReadLockGeneral(rw, ms);
}

inline int tavRWLockTryReadLockFast(TavRWLock* rw) {
    if (rw != nullptr && tavRWLockEnterRead(rw)) return TAVTHREAD_OK;
    return tavRWLockTryReadLockGeneral(rw);
}

inline int tavRWLockWriteLockFast(TavRWLock* rw, unsigned ms) {
    if (rw != nullptr && tavRWLockEnterWrite(rw)) return TAVTHREAD_OK;
    return tavRWLockWriteLockGeneral(rw, ms);
}

inline int tavRWLockTryWriteLockFast(TavRWLock* rw) {
    if (rw != nullptr && tavRWLockEnterWrite(rw)) return TAVTHREAD_OK;
    return tavRWLockTryWriteLockGeneral(rw);
}

inline int tavRWLockUnlockFast(TavRWLock* rw) {
    if (rw != nullptr) {
        tavHandingOver(rw);
        std::uint32_t word = rw->word.load(std::memory_order_relaxed);
        while (word != 0 && (word & kTavRWWaiters) == 0)
            if (rw->word.compare_exchange_weak(word, word == kTavRWWriter ? 0 : word - 1,
                                               std::memory_order_release,
                                               std::memory_order_relaxed))
                return TAVTHREAD_OK;
    }
    return tavRWLockUnlockGeneral(rw);
}

#endif
