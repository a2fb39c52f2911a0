#ifndef TAVTHREAD_SHARED_TAVSEMAPHORERECORD_HPP
#define TAVTHREAD_SHARED_TAVSEMAPHORERECORD_HPP

#include <semaphore.h>

#include <atomic>
#include <cstdint>

#include "TavThread/TavSemaphore.h"
#include "TavThread/shared/TavHandOver.hpp"

enum TavSemaphoreFlags : unsigned { kTavSemaphoreInitialized = 1, kTavSemaphoreSyntaxTraced = 2 };

/// The count is that of the POSIX semaphore and the posts promised to waiters that look for one
/// without sleeping. Such a post costs no system call and wakes nobody else. It is only made while
/// more waiters look than are promised one, and no waiter stops looking without the one that is
/// left for it: so none is ever lost to a sleeper.
struct TavSemaphore {
    sem_t native;
    std::atomic<std::uint32_t> looking{0};  // waiters that look, in units of kTavLooker; promises
    // Whether it has paid off lately to look for a post before sleeping, by pausing and by
    // yielding the processor: above 0 it is tried, below 0 counts up to the next attempt. Only
    // hints, which may miss an update.
    std::atomic<int> pauseScore{4};
    std::atomic<int> yieldScore{4};
    unsigned flags = 0;
    void* traceObj = nullptr;
};

int tavSemaphoreTryWaitGeneral(TavSemaphore* s);
int tavSemaphorePostGeneral(TavSemaphore* s);

constexpr std::uint32_t kTavLooker = 0x10000;
inline std::uint32_t tavLookers(std::uint32_t looking) { return looking / kTavLooker; }
inline std::uint32_t tavPromises(std::uint32_t looking) { return looking % kTavLooker; }

/// Changes the word as long as it has a promise to take; the taker may be a looker, who leaves.
inline bool tavSemaphoreTakePromise(TavSemaphore* s, std::uint32_t less) {
    std::uint32_t looking = s->looking.load(std::memory_order_relaxed);
    while (tavPromises(looking) != 0)
        if (s->looking.compare_exchange_weak(looking, looking - less, std::memory_order_acquire,
                                             std::memory_order_relaxed)) {
            tavTaken(s);
            return true;
        }
    return false;
}

/// Takes a count if there is one.
inline bool tavSemaphoreTakePlain(TavSemaphore* s) {
    return sem_trywait(&s->native) == 0 || tavSemaphoreTakePromise(s, 1);
}

/// Posts to a waiter that looks and has no promise yet.
inline bool tavSemaphorePromise(TavSemaphore* s) {
    std::uint32_t looking = s->looking.load(std::memory_order_relaxed);
    if (tavPromises(looking) >= tavLookers(looking)) return false;
    tavHandingOver(s);
    while (tavPromises(looking) < tavLookers(looking))
        if (s->looking.compare_exchange_weak(looking, looking + 1, std::memory_order_release,
                                             std::memory_order_relaxed))
            return true;
    return false;
}

/// tavXSemaphoreTryWait at the cost of the POSIX call when there is a count to take.
inline int tavSemaphoreTryWaitFast(TavSemaphore* s) {
    if (s != nullptr && tavSemaphoreTakePlain(s)) return TAVTHREAD_OK;
    return tavSemaphoreTryWaitGeneral(s);
}

/// tavXSemaphorePost at the cost of the POSIX call at most.
inline int tavSemaphorePostFast(TavSemaphore* s) {
    if (s != nullptr && (tavSemaphorePromise(s) || sem_post(&s->native) == 0)) return TAVTHREAD_OK;
    return tavSemaphorePostGeneral(s);
}

#endif
