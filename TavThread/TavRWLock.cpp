// While no thread waits, the lock uses only one word. The mutex and the conditions are for waiters.
//
// The word counts the readers in its lower 30 bits, or has the writer's mark. While the waiters'
// mark is clear, any thread changes the word by compare-and-swap: a reader adds 1 unless the
// writer's mark is set, a writer changes 0 to its mark, and an unlock reverses the change. While
// the waiters' mark is set, the fast operations fail, and only the holder of the mutex changes the
// word (Section).
//
// Section sets the waiters' mark when it begins. From then on it owns the word. It cannot miss an
// unlock: the unlock has either changed the word before, or takes the slow path and waits for the
// mutex. Section clears the mark when it ends, if no thread waits. While a thread waits, all
// operations take the slow path, and so they notice the waiter.
//
// Writers go first: a new reader waits while a writer waits. Each unlock on the slow path wakes one
// writer, or all readers if no writer waits. A thread that wakes up checks the word again, and may
// have to wait again. A writer that gives up, because of its timeout or a cancellation, wakes
// others in the same way (passOn): the last unlock may have woken this writer, or readers may have
// waited only for it.
//
// Memory order: taking the lock acquires, and giving it up releases, on the word or through the
// mutex. Setting the waiters' mark acquires too: the holder of the mutex may pass the lock to
// another thread, so it must see what a fast unlock has released. Clearing the mark releases; the
// next fast operation acquires. Relaxed loads only choose between the paths, or let a try fail.
//
// A mistake here deadlocks, or lets a reader in while a writer holds the lock.
// TavRWLockTest.OneWriterOrManyReadersAtATime mixes both kinds with tries and timeouts.
// ReadersContinueAfterTheWriterTimesOut, ReadersContinueAfterTheWriterIsCancelled and
// TimedOutWriterLosesNoWakeUp hang if passOn() does not wake a thread that could continue.
// `./dev check --all` also runs these tests under ThreadSanitizer.
#include "TavThread/TavRWLock.h"

#include <new>

#include "TavThread/internal/TavCreate.hpp"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/shared/TavRWLockRecord.hpp"

namespace {

constexpr TavAttrKind kKind = tavBasicAttrKind("TavRWLockAttr");

/// The slow path. It holds the mutex, and so owns the state.
class Section {
public:
    explicit Section(TavRWLock& rw) : m_rw(rw) {
        pthread_mutex_lock(&rw.mutex);
        // Acquires what earlier fast operations have released.
        rw.word.fetch_or(kTavRWWaiters, std::memory_order_acq_rel);
    }
    ~Section() {
        if (m_bWriterLeaves) passOn();
        if (m_rw.waitingReaders == 0 && m_rw.waitingWriters == 0)
            m_rw.word.fetch_and(~kTavRWWaiters, std::memory_order_release);
        pthread_mutex_unlock(&m_rw.mutex);
    }
    Section(const Section&) = delete;
    Section& operator=(const Section&) = delete;

    bool written() const { return (word() & kTavRWWriter) != 0; }
    std::uint32_t readers() const { return word() & kTavRWMostReaders; }
    bool free() const { return word() == kTavRWWaiters; }
    /// Sets a state in which the calling thread holds the lock.
    void take(std::uint32_t state) {
        set(state);
        tavTaken(&m_rw);
    }
    void set(std::uint32_t state) {
        m_rw.word.store(state | kTavRWWaiters, std::memory_order_release);
    }

    /// @return 0 if the caller must check the state again, else the result with which it gives up.
    template <class Wait>
    int waitToRead(Wait wait) {
        TavCounted waiting(m_rw.waitingReaders);
        return wait(&m_rw.readers, &m_rw.mutex);
    }
    template <class Wait>
    int waitToWrite(Wait wait) {
        m_bWriterLeaves = true;  // stays true if the wait fails or the thread is unwound
        TavCounted waiting(m_rw.waitingWriters);
        const int rc = wait(&m_rw.writers, &m_rw.mutex);
        if (rc == TAVTHREAD_OK) m_bWriterLeaves = false;
        return rc;
    }

private:
    std::uint32_t word() const { return m_rw.word.load(std::memory_order_relaxed); }

    /// Other threads may have waited only for the writer that gives up, and the last unlock may
    /// have woken only this writer.
    void passOn() {
        if (m_rw.waitingWriters == 0 && !written() && m_rw.waitingReaders > 0)
            pthread_cond_broadcast(&m_rw.readers);
        else if (free() && m_rw.waitingWriters > 0)
            pthread_cond_signal(&m_rw.writers);
    }

    TavRWLock& m_rw;
    bool m_bWriterLeaves = false;
};

/// Returns a function that waits on a condition. Each call waits for up to the full timeout.
auto forMilliseconds(unsigned ms) {
    return [ms](pthread_cond_t* condition, pthread_mutex_t* mutex) {
        const int rc = tavWaitOn(condition, mutex, ms);
        return ms == TAVTHREAD_INFINITE && rc != TAVTHREAD_ERROR ? TAVTHREAD_OK : rc;
    };
}

/// Returns a function that waits on a condition. All its calls have the same deadline.
auto untilDeadline(unsigned ms) {
    return [deadline = tavDeadline(ms)](pthread_cond_t* condition, pthread_mutex_t* mutex) {
        return tavWaitUntil(condition, mutex, deadline);
    };
}

template <class Wait>
int readLock(TavRWLock& rw, Wait wait) {
    Section section(rw);
    while (section.written() || rw.waitingWriters > 0)
        if (const int rc = section.waitToRead(wait)) return rc;
    if (section.readers() == kTavRWMostReaders) return TAVTHREAD_AGAIN;
    section.take(section.readers() + 1);
    return TAVTHREAD_OK;
}

template <class Wait>
int writeLock(TavRWLock& rw, Wait wait) {
    Section section(rw);
    while (!section.free())
        if (const int rc = section.waitToWrite(wait)) return rc;
    section.take(kTavRWWriter);
    return TAVTHREAD_OK;
}

int makeParts(TavRWLock* rw) {
    int err = tavRetry([rw] { return pthread_mutex_init(&rw->mutex, nullptr); });
    if (err != 0) return err;
    err = tavRetry([rw] { return pthread_cond_init(&rw->readers, nullptr); });
    if (err == 0) {
        err = tavRetry([rw] { return pthread_cond_init(&rw->writers, nullptr); });
        if (err != 0) pthread_cond_destroy(&rw->readers);
    }
    if (err != 0) pthread_mutex_destroy(&rw->mutex);
    return err;
}

int create(TavRWLock** out) {
    TavRWLock* rw = new (std::nothrow) TavRWLock;
    if (rw == nullptr) return TAVTHREAD_NOMEM;
    if (const int err = makeParts(rw)) {
        delete rw;
        return tavThread_MapError(err);
    }
    *out = rw;
    return TAVTHREAD_OK;
}

}  // namespace

int tavRWLockReadLockGeneral(TavRWLock* rw, unsigned ms) {
    return rw == nullptr ? TAVTHREAD_INVALID : readLock(*rw, forMilliseconds(ms));
}

int tavRWLockTryReadLockGeneral(TavRWLock* rw) {
    if (rw == nullptr) return TAVTHREAD_INVALID;
    if ((rw->word.load(std::memory_order_relaxed) & kTavRWWriter) != 0) return TAVTHREAD_BUSY;
    Section section(*rw);
    if (section.written() || rw->waitingWriters > 0) return TAVTHREAD_BUSY;
    if (section.readers() == kTavRWMostReaders) return TAVTHREAD_AGAIN;
    section.take(section.readers() + 1);
    return TAVTHREAD_OK;
}

int tavRWLockWriteLockGeneral(TavRWLock* rw, unsigned ms) {
    return rw == nullptr ? TAVTHREAD_INVALID : writeLock(*rw, forMilliseconds(ms));
}

int tavRWLockTryWriteLockGeneral(TavRWLock* rw) {
    if (rw == nullptr) return TAVTHREAD_INVALID;
    if ((rw->word.load(std::memory_order_relaxed) & ~kTavRWWaiters) != 0) return TAVTHREAD_BUSY;
    Section section(*rw);
    if (!section.free()) return TAVTHREAD_BUSY;
    section.take(kTavRWWriter);
    return TAVTHREAD_OK;
}

int tavRWLockUnlockGeneral(TavRWLock* rw) {
    if (rw == nullptr) return TAVTHREAD_INVALID;
    Section section(*rw);
    if (section.written())
        section.set(0);
    else if (section.readers() > 0)
        section.set(section.readers() - 1);
    if (rw->waitingWriters > 0) return tavThread_MapError(pthread_cond_signal(&rw->writers));
    if (rw->waitingReaders > 0) return tavThread_MapError(pthread_cond_broadcast(&rw->readers));
    return TAVTHREAD_OK;
}

extern "C" {

int tavXRWLockCreate(TavRWLock** out, ...) {
    va_list list;
    va_start(list, out);
    const int rc = tavCreate(
        out, kKind, list, [out](const TavAttributes&) { return create(out); },
        [out](void* traceObj, const char* attributes) {
            tavThreadTraceOutput(traceObj, TavTraceRWLock, "%s%s( rw:%x=%x%s )",
                                 TAV_TRACE_CALL("tavRWLockCreate"), tavTraceHex(out),
                                 tavTraceHex(*out), attributes);
        },
        [out](void* traceObj, const char* attributes) {
            tavThreadTraceOutput(traceObj, TavTraceSyntax, "CREATE RWLOCK %x%s;", tavTraceHex(*out),
                                 attributes);
        });
    va_end(list);
    return rc;
}

int tavXRWLockDestroy(TavRWLock* rw) {
    if (rw == nullptr) return TAVTHREAD_INVALID;
    // The thread that unlocked the lock last may still hold the mutex. Waits until that thread has
    // unlocked the mutex.
    pthread_mutex_lock(&rw->mutex);
    pthread_mutex_unlock(&rw->mutex);
    const int errors[] = {tavRetry([rw] { return pthread_mutex_destroy(&rw->mutex); }),
                          tavRetry([rw] { return pthread_cond_destroy(&rw->readers); }),
                          tavRetry([rw] { return pthread_cond_destroy(&rw->writers); })};
    delete rw;
    for (const int err : errors)
        if (err != 0) return tavThread_MapError(err);
    return TAVTHREAD_OK;
}

int tavXRWLockReadLock(TavRWLock* rw) { return tavRWLockReadLockFast(rw, TAVTHREAD_INFINITE); }
int tavXRWLockTryReadLock(TavRWLock* rw) { return tavRWLockTryReadLockFast(rw); }
int tavXRWLockTimedReadLock(TavRWLock* rw, unsigned ms) { return tavRWLockReadLockFast(rw, ms); }
int tavXRWLockWriteLock(TavRWLock* rw) { return tavRWLockWriteLockFast(rw, TAVTHREAD_INFINITE); }
int tavXRWLockTryWriteLock(TavRWLock* rw) { return tavRWLockTryWriteLockFast(rw); }
int tavXRWLockTimedWriteLock(TavRWLock* rw, unsigned ms) { return tavRWLockWriteLockFast(rw, ms); }

int tavXRWLockBoundedReadLock(TavRWLock* rw, unsigned ms) {
    if (ms == TAVTHREAD_INFINITE) return tavXRWLockReadLock(rw);
    const int rc = tavRWLockTryReadLockFast(rw);
    if (rc != TAVTHREAD_BUSY) return rc;
    return ms == 0 ? TAVTHREAD_TIMEOUT : readLock(*rw, untilDeadline(ms));
}

int tavXRWLockBoundedWriteLock(TavRWLock* rw, unsigned ms) {
    if (ms == TAVTHREAD_INFINITE) return tavXRWLockWriteLock(rw);
    const int rc = tavRWLockTryWriteLockFast(rw);
    if (rc != TAVTHREAD_BUSY) return rc;
    return ms == 0 ? TAVTHREAD_TIMEOUT : writeLock(*rw, untilDeadline(ms));
}

int tavXRWLockUnlock(TavRWLock* rw) { return tavRWLockUnlockFast(rw); }

}  // extern "C"
