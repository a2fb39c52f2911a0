#include "TavThread/TavMutex.h"

#include <climits>
#include <new>

#include "TavThread/internal/TavCreate.hpp"
#include "TavThread/internal/TavHeldMutexes.hpp"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/shared/TavHandOver.hpp"
#include "TavThread/shared/TavMutexRecord.hpp"

namespace {

constexpr TavAttrTag kTags[] = {TAV_BASIC_ATTR_TAGS,
                                {"Recursive", " RECURSIVE", TavAttrValue::kNone},
                                {"TrackOwner", " TRACK OWNER", TavAttrValue::kNone},
                                {"Flag6", nullptr, TavAttrValue::kNone}};
constexpr int kLooks = 4;    // tries while the mutex is taken
constexpr int kPauses = 12;  // pauses before the first try; doubled before each later try
constexpr TavAttrKind kKind = {"TavMutexAttr", kTags, 7};

TavRecursiveMutex* recursive(TavMutex* m) {
    return (m->flags & kTavMutexRecursive) != 0 ? static_cast<TavRecursiveMutex*>(m) : nullptr;
}

void freeRecord(TavMutex* m) {
    if (TavRecursiveMutex* r = recursive(m))
        delete r;
    else
        delete m;
}

TavMutex* newRecord(const TavAttributes& attrs) {
    TavMutex* m = attrs.has(TavMutexAttrRecursive) ? new (std::nothrow) TavRecursiveMutex
                                                   : new (std::nothrow) TavMutex;
    if (m == nullptr) return nullptr;
    m->traceObj = attrs.traceObject();
    if (attrs.has(TavMutexAttrRecursive)) m->flags |= kTavMutexRecursive;
    if (attrs.syntaxTraced()) m->flags |= kTavMutexSyntaxTraced;
    if (attrs.has(TavMutexAttrTrackOwner)) m->flags |= kTavMutexTracking;
    if (attrs.has(TavMutexAttrFlag6)) m->flags |= kTavMutexFlag6;
    return m;
}

int create(TavMutex** out, const TavAttributes& attrs) {
    TavMutex* m = newRecord(attrs);
    if (m == nullptr) return TAVTHREAD_NOMEM;
    if (const int err = tavRetry([m] { return pthread_mutex_init(&m->native, nullptr); })) {
        freeRecord(m);
        return tavThread_MapError(err);
    }
    m->flags |= kTavMutexInitialized;
    *out = m;
    return TAVTHREAD_OK;
}

/// Returns true if the caller already holds the recursive mutex. Then counts the lock, or sets rc
/// to TAVTHREAD_AGAIN if the count is at its limit.
bool reentered(TavMutex* m, int& rc) {
    TavRecursiveMutex* r = recursive(m);
    if (r == nullptr || !r->mine()) return false;
    rc = r->count < INT_MAX ? TAVTHREAD_OK : TAVTHREAD_AGAIN;
    if (rc == TAVTHREAD_OK) ++r->count;
    return true;
}

/// Spins briefly until a holder on another processor unlocks. Most threads hold a mutex for less
/// time than a waiter needs to sleep and wake up. The pauses grow, so that the holder keeps the
/// cache line. Two contending threads then need less time than if they slept.
bool tookFromHolder(TavMutex* m) {
    if (!tavSeveralProcessors()) return false;
    for (int i = 0; i < kLooks; ++i) {
        for (int j = 0; j < kPauses << i; ++j) __builtin_ia32_pause();
        if (pthread_mutex_trylock(&m->native) == 0) return true;
    }
    return false;
}

/// Waits for the mutex until the deadline on the monotonic clock. Returns an error number.
int lockUntil(TavMutex* m, const timespec& deadline) {
    const TavTryReport report(&m->native);
    return report(
        tavRetry([&] { return pthread_mutex_clocklock(&m->native, CLOCK_MONOTONIC, &deadline); }));
}

/// Records the caller as the holder of a mutex that it has just taken.
int taken(TavMutex* m, const char* file, int line) {
    if (TavRecursiveMutex* r = recursive(m)) {
        r->setHolder(&tavThreadMark);
        r->count = 0;
    }
    return (m->flags & kTavMutexTracking) != 0 ? tavHeldMutexesAdd(m, file, line) : TAVTHREAD_OK;
}

}  // namespace

__thread char tavThreadMark = 0;

int tavMutexLockGeneral(TavMutex* m, const char* file, int line) {
    if (m == nullptr) return TAVTHREAD_INVALID;
    int rc;
    if (reentered(m, rc)) return rc;
    if (!tookFromHolder(m))
        if (const int err = tavRetry([m] { return pthread_mutex_lock(&m->native); }))
            return tavThread_MapError(err);
    return taken(m, file, line);
}

int tavMutexTryLockGeneral(TavMutex* m, const char* file, int line) {
    if (m == nullptr) return TAVTHREAD_INVALID;
    int rc;
    if (reentered(m, rc)) return rc;
    const int err = tavRetry([m] { return pthread_mutex_trylock(&m->native); });
    if (err == EBUSY || err == EAGAIN) return TAVTHREAD_BUSY;
    return err != 0 ? tavThread_MapError(err) : taken(m, file, line);
}

int tavMutexUnlockGeneral(TavMutex* m) {
    if (m == nullptr) return TAVTHREAD_INVALID;
    TavRecursiveMutex* r = recursive(m);
    if (r != nullptr) {
        if (!r->mine()) return TAVTHREAD_ERROR;
        if (r->count > 0) {
            --r->count;
            return TAVTHREAD_OK;
        }
    }
    if ((m->flags & kTavMutexTracking) != 0) tavHeldMutexesRemove(m);
    if (r != nullptr) r->setHolder(nullptr);
    return tavThread_MapError(tavRetry([m] { return pthread_mutex_unlock(&m->native); }));
}

extern "C" {

int tavXMutexCreate(TavMutex** out, ...) {
    va_list list;
    va_start(list, out);
    const int rc = tavCreate(
        out, kKind, list, [out](const TavAttributes& attrs) { return create(out, attrs); },
        [out](void* traceObj, const char* attributes) {
            tavThreadTraceOutput(traceObj, TavTraceMutex, "%s%s( m:%x=%x%s )",
                                 TAV_TRACE_CALL("tavMutexCreate"), tavTraceHex(out),
                                 tavTraceHex(*out), attributes);
        },
        [out](void* traceObj, const char* attributes) {
            tavThreadTraceOutput(traceObj, TavTraceSyntax, "CREATE MUTEX %x%s;", tavTraceHex(*out),
                                 attributes);
        });
    va_end(list);
    return rc;
}

int tavXMutexDestroy(TavMutex* m) {
    if (m == nullptr) return TAVTHREAD_INVALID;
    // A mutex destroyed while held must not stay in its holder's list.
    if ((m->flags & kTavMutexTracking) != 0) tavHeldMutexesRemove(m);
    const int rc = tavThread_MapError(tavRetry([m] { return pthread_mutex_destroy(&m->native); }));
    freeRecord(m);
    return rc;
}

int tavXMutexLock_(TavMutex* m, const char* file, int line) {
    return m != nullptr && tavMutexLockPlain(m) ? TAVTHREAD_OK : tavMutexLockGeneral(m, file, line);
}

int tavXMutexTryLock_(TavMutex* m, const char* file, int line) {
    return m != nullptr && tavMutexTryLockPlain(m) ? TAVTHREAD_OK
                                                   : tavMutexTryLockGeneral(m, file, line);
}

int tavXMutexTimedLock_(TavMutex* m, unsigned ms, const char* file, int line) {
    if (m == nullptr || ms == TAVTHREAD_INFINITE)
        return m != nullptr && tavMutexLockPlain(m) ? TAVTHREAD_OK
                                                    : tavMutexLockGeneral(m, file, line);
    int rc;
    if (reentered(m, rc)) return rc;
    rc = tavPoll(ms, [m] { return pthread_mutex_trylock(&m->native); });
    return rc == TAVTHREAD_OK ? taken(m, file, line) : rc;
}

int tavXMutexBoundedLock_(TavMutex* m, unsigned ms, const char* file, int line) {
    if (ms == TAVTHREAD_INFINITE) return tavXMutexLock_(m, file, line);
    const int rc = tavXMutexTryLock_(m, file, line);
    if (rc != TAVTHREAD_BUSY) return rc;
    if (ms == 0) return TAVTHREAD_TIMEOUT;
    const timespec deadline = tavDeadline(ms);
    if (!tookFromHolder(m))
        if (const int err = lockUntil(m, deadline)) return tavThread_MapError(err);
    return taken(m, file, line);
}

int tavXMutexUnlock_(TavMutex* m) {
    return m != nullptr && tavMutexUnlockPlain(m) ? TAVTHREAD_OK : tavMutexUnlockGeneral(m);
}

}  // extern "C"
