#include "TavThread/internal/TavHeldMutexes.hpp"

#include <mutex>

#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/shared/TavMutexRecord.hpp"
#include "TavThread/shared/TavThreadRecord.hpp"

namespace {

TavThreadCriticalSection g_lists;

void clearOwner(TavMutex* m) {
    (m->heldBefore != nullptr ? m->heldBefore->heldAfter : tavFirstHeldMutex) = m->heldAfter;
    if (m->heldAfter != nullptr) m->heldAfter->heldBefore = m->heldBefore;
    m->heldBefore = m->heldAfter = nullptr;
    m->owner = nullptr;
    m->previous = m->next = nullptr;
    m->file = nullptr;
    m->line = 0;
}

}  // namespace

TavMutex* tavFirstHeldMutex = nullptr;

int tavHeldMutexesAdd(TavMutex* m, const char* file, int line) {
    TavThread* self = tavThreadSelf();
    if (self == nullptr) return TAVTHREAD_ERROR;
    std::lock_guard<TavThreadCriticalSection> hold(g_lists);
    if (m->owner != nullptr) return TAVTHREAD_OK;
    m->owner = self;
    m->file = file;
    m->line = line;
    m->next = self->heldMutexes;
    if (m->next != nullptr) m->next->previous = m;
    self->heldMutexes = m;
    m->heldAfter = tavFirstHeldMutex;
    if (m->heldAfter != nullptr) m->heldAfter->heldBefore = m;
    tavFirstHeldMutex = m;
    return TAVTHREAD_OK;
}

void tavHeldMutexesRemove(TavMutex* m) {
    std::lock_guard<TavThreadCriticalSection> hold(g_lists);
    if (m->owner == nullptr) return;
    if (m->next != nullptr) m->next->previous = m->previous;
    (m->previous != nullptr ? m->previous->next : m->owner->heldMutexes) = m->next;
    clearOwner(m);
}

void tavHeldMutexesForget(TavThread* thread) {
    std::lock_guard<TavThreadCriticalSection> hold(g_lists);
    while (TavMutex* m = thread->heldMutexes) {
        thread->heldMutexes = m->next;
        clearOwner(m);
    }
}
