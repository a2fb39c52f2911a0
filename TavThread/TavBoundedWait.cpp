// A bounded wait first spins: it looks for a post without sleeping. Then it sleeps.
//
// Why: to wake a sleeping waiter costs the poster a system call and the waiter two context
// switches. If posts come within microseconds, as in a hand-over between two threads, spinning is
// many times faster. If posts come later, spinning wastes processor time. So each semaphore learns
// whether spinning pays off.
//
// The count of the semaphore is the count of the POSIX semaphore plus the number of promises. A
// promise is a post that the POSIX semaphore does not count. A looker is a waiter that spins. The
// word `looking` has the number of lookers in its upper half and the number of promises in its
// lower half. Its invariant: promises <= lookers.
//   post    adds a promise if there are fewer promises than lookers; otherwise calls sem_post.
//   look    takes a promise, or a post of the POSIX semaphore. If this succeeds, the waiter is no
//           longer a looker. One atomic step takes the promise and subtracts the looker.
//   leave   takes a promise if there is one: promises must not outlive the last looker, because
//           sleeping threads never see promises.
// A looker may take a post of the POSIX semaphore and then find a promise. It first returns the
// post and then takes the promise. Meanwhile the count may seem too high, but never too low. If the
// count seemed too low, a try could fail although there is a post. Threads that are not lookers may
// take promises too, for example in a try.
//
// Memory order: a promise is made with release and taken with acquire, like a post by sem_post and
// sem_wait. So the taker sees what the poster wrote before the post. The number of lookers hands
// over no data, so relaxed operations are enough for it.
//
// Each semaphore has two scores, which say how often spinning has found a post recently. pauseScore
// is for pausing, which finds a post if the poster runs on another processor. yieldScore is for
// yielding, which finds a post if the poster waits for this processor. A waiter pauses or yields
// only if the score is above 0. It pauses longer with a higher score, and yields at most three
// times. Each success adds 1, up to 8; each failure subtracts 2. Instead of reaching 0, a score
// drops far below 0. Then each short sleep adds 1, because spinning would have saved that sleep.
// Scores are hints, and several threads change them without a lock: a lost update costs time, never
// a post.
// A wait for a new semaphore pauses, but it does not yield until the first short sleep. On busy
// processors a yield can take several milliseconds. That is too long for the many semaphores that
// have only one wait.
//
// Why not one futex word and a spin of a fixed length: that design needs no lookers, promises or
// scores. But in a trial it was slower, except in one case: without a spin, the tasks of the queued
// pool took less time. Medians in ns on two busy x86 processors (a spin of 5 us was slower still,
// and so were three yields after the spin):
//                                  this wait  futex, 1.5 us spin  futex, no spin
//   QBLThreadPoolFixed round trip        561                 769             795
//   QBLThreadPoolQueued round trip       646                1511            1384
//   QBLThreadPoolVariable per task       372                 789             682
//   QBLThreadPoolQueued per task         109                 120              91
// Also, sem_wait is a cancellation point, and the futex system call is not.
//
// A mistake here loses a post, and then a waiter sleeps forever. The tests
// TavSemaphoreTest.BoundedWaitLosesNoPostAndSynchronizesMemory and
// BoundedWaitHandsOverBackAndForth then hang or find a wrong count. Some mistakes show only in one
// of several runs (--gtest_repeat). ThreadSanitizer reports a hand-over without release and acquire
// (preset x64-tsan; the test ThreadsTsanUser uses a library that is built without
// ThreadSanitizer). The benchmarks roundTrip and throughput of QBLThreadPoolBench show the cost of
// other constants.
#include <sched.h>

#include <cstdint>
#include <ctime>

#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/shared/TavSemaphoreRecord.hpp"

namespace {

constexpr int kTopScore = 8;
constexpr int kTryScore = 4;  // the score with which spinning resumes
constexpr std::int64_t kPauseNsPerScore = 1200;
constexpr int kPauses = 4;  // pause instructions between two looks at the count
constexpr int kYields = 3;
// Scores that stop spinning until enough short sleeps have counted them up to 0. kAfterMisses
// follows pauses or yields without success. kAfterLongYield follows a yield that gave the processor
// to a busy thread for a long time; a thousand short sleeps cost less than such a yield.
constexpr int kAfterMisses = -16;
constexpr int kAfterLongYield = -4000;
constexpr std::int64_t kLongYieldNs = 200000;
constexpr std::int64_t kShortSleepNs = 50000;

std::int64_t monotonicNs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

/// A waiter that spins. It counts as a looker from its construction until look() succeeds or
/// leave() returns.
class Looker {
public:
    explicit Looker(TavSemaphore* s) : m_semaphore(s) {
        s->looking.fetch_add(kTavLooker, std::memory_order_relaxed);
    }
    Looker(const Looker&) = delete;
    Looker& operator=(const Looker&) = delete;

    /// @return true if the waiter has taken a post; it is then no longer a looker.
    bool look() {
        if (takePromise()) return true;
        if (sem_trywait(&m_semaphore->native) != 0) return false;
        std::uint32_t looking = m_semaphore->looking.load(std::memory_order_relaxed);
        while (tavPromises(looking) == 0)
            if (m_semaphore->looking.compare_exchange_weak(looking, looking - kTavLooker,
                                                           std::memory_order_relaxed))
                return true;
        // There is a promise now. Returns the post first, so that the count never seems too low.
        sem_post(&m_semaphore->native);
        return takePromise();
    }
    /// Stops looking.
    /// @return true if the waiter has taken a promise, which it must do if there is one.
    bool leave() {
        std::uint32_t looking = m_semaphore->looking.load(std::memory_order_relaxed);
        for (;;) {
            const bool promised = tavPromises(looking) != 0;
            const std::uint32_t left = looking - kTavLooker - (promised ? 1 : 0);
            if (m_semaphore->looking.compare_exchange_weak(looking, left, std::memory_order_acquire,
                                                           std::memory_order_relaxed)) {
                if (promised) tavTaken(m_semaphore);
                return promised;
            }
        }
    }

private:
    bool takePromise() { return tavSemaphoreTakePromise(m_semaphore, kTavLooker + 1); }

    TavSemaphore* m_semaphore;
};

int scoreOf(const std::atomic<int>& score) { return score.load(std::memory_order_relaxed); }

void setScore(std::atomic<int>& score, int to) {
    if (scoreOf(score) != to) score.store(to, std::memory_order_relaxed);
}

void learn(std::atomic<int>& score, bool taken) {
    const int now = scoreOf(score);
    if (taken)
        setScore(score, now < kTopScore ? now + 1 : kTopScore);
    else
        setScore(score, now > 2 ? now - 2 : kAfterMisses);
}

/// Counts a negative score up by 1. The short sleep shows that spinning may pay off again.
void learnFromShortSleep(std::atomic<int>& score) {
    const int now = scoreOf(score);
    if (now < 0) setScore(score, now == -1 ? kTryScore : now + 1);
}

/// Finds a post that comes from another processor within microseconds.
bool takePausing(TavSemaphore* s, Looker& looker) {
    const int score = scoreOf(s->pauseScore);
    if (score <= 0) return false;
    bool taken = false;
    for (const std::int64_t end = monotonicNs() + kPauseNsPerScore * score;
         !taken && monotonicNs() < end; taken = looker.look())
        for (int i = 0; i < kPauses; ++i) __builtin_ia32_pause();
    learn(s->pauseScore, taken);
    return taken;
}

/// Finds a post by a thread that is waiting for this processor.
bool takeYielding(TavSemaphore* s, Looker& looker) {
    if (scoreOf(s->yieldScore) <= 0) return false;
    const std::int64_t start = monotonicNs();
    bool taken = false;
    for (int i = 0; i < kYields && !taken; ++i) {
        sched_yield();
        taken = looker.look();
    }
    if (monotonicNs() - start > kLongYieldNs)
        setScore(s->yieldScore, kAfterLongYield);
    else
        learn(s->yieldScore, taken);
    return taken;
}

bool takeAwake(TavSemaphore* s) {
    if (!tavSeveralProcessors()) return false;
    if (scoreOf(s->pauseScore) <= 0 && scoreOf(s->yieldScore) <= 0) return false;
    Looker looker(s);
    return takePausing(s, looker) || takeYielding(s, looker) || looker.leave();
}

int takeAsleep(TavSemaphore* s, unsigned ms, std::int64_t start) {
    if (ms == TAVTHREAD_INFINITE) return tavRetryErrno([s] { return sem_wait(&s->native); });
    const std::int64_t end = start + static_cast<std::int64_t>(ms) * 1000000;
    timespec deadline{};
    deadline.tv_sec = static_cast<time_t>(end / 1000000000);
    deadline.tv_nsec = static_cast<long>(end % 1000000000);
    const int err =
        tavRetryErrno([&] { return sem_clockwait(&s->native, CLOCK_MONOTONIC, &deadline); });
    // ThreadSanitizer does not know that this call acquires what sem_post released.
    if (err == 0) tavTaken(&s->native);
    return err;
}

}  // namespace

extern "C" int tavXSemaphoreBoundedWait(TavSemaphore* s, unsigned ms) {
    if (s == nullptr) return TAVTHREAD_INVALID;
    if (tavSemaphoreTakePlain(s)) return TAVTHREAD_OK;
    if (ms == 0) return TAVTHREAD_TIMEOUT;
    const std::int64_t start = monotonicNs();
    if (takeAwake(s)) return TAVTHREAD_OK;
    const std::int64_t asleep = monotonicNs();
    const int err = takeAsleep(s, ms, start);
    if (err == 0 && monotonicNs() - asleep < kShortSleepNs) {
        learnFromShortSleep(s->pauseScore);
        learnFromShortSleep(s->yieldScore);
    }
    return tavThread_MapError(err);
}
