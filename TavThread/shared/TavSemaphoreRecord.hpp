#ifndef TAVTHREAD_SHARED_TAVSEMAPHORERECORD_HPP
#define TAVTHREAD_SHARED_TAVSEMAPHORERECORD_HPP

#include <semaphore.h>

#include <atomic>
#include <climits>
#include <cstdint>

#include "TavThread/TavSemaphore.h"
#include "TavThread/shared/TavHandOver.hpp"

enum TavSemaphoreFlags : unsigned { kTavSemaphoreInitialized = 1, kTavSemaphoreSyntaxTraced = 2 };

/// The count of the semaphore is the count of `native` plus the promises. A promise is a post for a
/// looker, which is a waiter that spins. A promise costs no system call and wakes no sleeping
/// waiter. A post makes a promise only while there are more lookers than promises. If there is
/// a promise when a looker stops looking, the looker takes it. So no sleeping waiter misses a post.
struct TavSemaphore {
    sem_t native;
    std::atomic<std::uint32_t> looking{0};  // lookers in units of kTavLooker, plus promises
    // The scores say how often pausing and yielding the processor have recently found a post. If a
    // score is above 0, a waiter pauses or yields before it sleeps. If a score is below 0, short
    // sleeps count it up again. The scores are only hints and may miss an update.
    std::atomic<int> pauseScore{4};
    std::atomic<int> yieldScore{-1};
    unsigned flags = 0;
    void* traceObj = nullptr;
    // Only for an owner that has a mutex of its own; these fields change under that mutex.
    std::atomic<std::uint32_t> ready{0};  // offers that no thread has claimed
    std::uint32_t waiters = 0;            // threads that enlisted and have no post yet
};

int tavSemaphoreTryWaitGeneral(TavSemaphore* s);
int tavSemaphorePostGeneral(TavSemaphore* s);
int tavSemaphoreOfferGeneral(TavSemaphore* s);

constexpr std::uint32_t kTavLooker = 0x10000;
inline std::uint32_t tavLookers(std::uint32_t looking) { return looking / kTavLooker; }
inline std::uint32_t tavPromises(std::uint32_t looking) { return looking % kTavLooker; }

/// Takes a promise if there is one.
/// @param less  subtracted from the word: 1, or kTavLooker + 1 for a looker, which then stops
///              looking.
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

/// Lowers the count by 1 if it is not 0.
inline bool tavSemaphoreTakePlain(TavSemaphore* s) {
    return sem_trywait(&s->native) == 0 || tavSemaphoreTakePromise(s, 1);
}

/// Adds a promise if there are more lookers than promises.
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

/// tavXSemaphoreTryWait, but about as cheap as the POSIX call if the count is not 0.
inline int tavSemaphoreTryWaitFast(TavSemaphore* s) {
    if (s != nullptr && tavSemaphoreTakePlain(s)) return TAVTHREAD_OK;
    return tavSemaphoreTryWaitGeneral(s);
}

/// tavXSemaphorePost, but about as cheap as the POSIX call, or cheaper.
inline int tavSemaphorePostFast(TavSemaphore* s) {
    if (s != nullptr && (tavSemaphorePromise(s) || sem_post(&s->native) == 0)) return TAVTHREAD_OK;
    return tavSemaphorePostGeneral(s);
}

// The owner of a semaphore may have a mutex of its own, like a queue. If it holds this mutex for
// each of the next four operations, the count lies in `ready`, and an offer posts only if a thread
// has enlisted. So an uncontended offer or claim needs no locked instruction. Each enlisted thread
// has an entry in `waiters` or a post: an offer turns an entry into a post, and the thread takes
// this post with a wait, without the mutex. If the wait fails, the thread calls tavSemaphoreDelist.

/// Raises the count by 1.
/// @return false, without a change, if a thread has enlisted. tavSemaphoreOfferGeneral then posts.
inline bool tavSemaphoreOfferPlain(TavSemaphore* s) {
    const std::uint32_t ready = s->ready.load(std::memory_order_relaxed);
    if (__builtin_expect(s->waiters != 0 || ready == SEM_VALUE_MAX, 0)) return false;
    s->ready.store(ready + 1, std::memory_order_relaxed);
    return true;
}

/// Lowers the count by 1 if it is not 0.
inline bool tavSemaphoreClaim(TavSemaphore* s) {
    const std::uint32_t ready = s->ready.load(std::memory_order_relaxed);
    if (ready == 0) return false;
    s->ready.store(ready - 1, std::memory_order_relaxed);
    return true;
}

/// Announces that this thread will wait. The count must be 0.
inline void tavSemaphoreEnlist(TavSemaphore* s) { ++s->waiters; }

/// Ends what tavSemaphoreEnlist began, after a wait without a post.
/// @return true if there was a post after all. The thread has then taken it.
inline bool tavSemaphoreDelist(TavSemaphore* s) {
    if (tavSemaphoreTakePlain(s)) return true;
    --s->waiters;
    return false;
}

#endif
