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

/// The state word counts the readers or holds the writer mark. While nobody waits it is all there
/// is to the lock, and changes by compare-and-swap. Once the waiters mark is set, which is done
/// under the mutex, only the holder of the mutex changes the word; the mark goes when the mutex is
/// given up and nobody waits any more.
struct TavRWLock {
    std::atomic<std::uint32_t> word{0};
    // The rest is guarded by the mutex.
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

/// Counts one more reader if the word says that no writer holds the lock and nobody waits.
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

/// Marks the writer if the lock is free and nobody waits.
inline bool tavRWLockEnterWrite(TavRWLock* rw) {
    std::uint32_t free = 0;
    if (!rw->word.compare_exchange_strong(free, kTavRWWriter, std::memory_order_acquire,
                                          std::memory_order_relaxed))
        return false;
    tavTaken(rw);
    return true;
}

/// tavXRWLockTimedReadLock at the cost of one atomic operation while nobody is in the way;
/// likewise the others.
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
