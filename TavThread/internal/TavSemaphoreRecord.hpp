#ifndef TAVTHREAD_INTERNAL_TAVSEMAPHORERECORD_HPP
#define TAVTHREAD_INTERNAL_TAVSEMAPHORERECORD_HPP

#include <semaphore.h>

#include <atomic>

#include "TavThread/TavSemaphore.h"

enum TavSemaphoreFlags : unsigned { kTavSemaphoreInitialized = 1, kTavSemaphoreSyntaxTraced = 2 };

struct TavSemaphore {
    sem_t native;
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

/// Takes a count if there is one.
inline bool tavSemaphoreTakePlain(TavSemaphore* s) { return sem_trywait(&s->native) == 0; }

/// tavXSemaphoreTryWait at the cost of the POSIX call when there is a count to take.
inline int tavSemaphoreTryWaitFast(TavSemaphore* s) {
    if (s != nullptr && tavSemaphoreTakePlain(s)) return TAVTHREAD_OK;
    return tavSemaphoreTryWaitGeneral(s);
}

/// tavXSemaphorePost at the cost of the POSIX call.
inline int tavSemaphorePostFast(TavSemaphore* s) {
    if (s != nullptr && sem_post(&s->native) == 0) return TAVTHREAD_OK;
    return tavSemaphorePostGeneral(s);
}

#endif
