// A bounded wait first looks for a post while it stays awake, and then sleeps.
//
// Why: a sleeper costs the poster a system call, and itself two switches of the processor. Where
// posts come within microseconds, as in a hand-over between two threads, staying awake is many
// times faster; where they do not, it burns a processor. So each semaphore learns whether it pays
// off.
//
// The count has two parts: that of the POSIX semaphore, and the promises in `looking`. The word has
// the number of lookers, waiters that are awake, in its upper half and that of the promises in its
// lower half. Its invariant: promises <= lookers.
//   post    adds a promise while there are fewer of them than lookers; otherwise sem_post.
//   look    takes a promise and leaves, in one step; or takes from the POSIX count and leaves.
//   leave   takes a promise if there is one: promises must not outlive the last looker, because
//           sleeping threads never see promises.
// A looker that has taken from the POSIX count and finds a promise puts back what it took, before
// it takes the promise: the count may seem too high for a moment, but never too low, which would
// make a try fail although there is a post. Others, such as a try, may take a promise as well,
// without being lookers.
//
// Memory order: a promise is made with release and taken with acquire, as sem_post and sem_wait
// are; they carry what the poster wrote to the taker. Numbers of lookers carry nothing, and are
// relaxed.
//
// The scores say how often looking has paid off lately, by pausing (the poster runs on another
// processor) and by yielding (it waits for this one). A score above 0 allows an attempt; pausing
// lasts the longer the higher its score is, yielding is done three times at most. Each success adds
// 1, up to 8; each failure takes 2. Instead of reaching 0 a score drops far below it, from where
// short sleeps, which an attempt would have saved, count it up again. Scores are hints that several
// threads change without care: a lost update costs time, never a post.
//
// Why not one futex word and a spin of a fixed length: that needs no lookers, promises or scores,
// but in a trial it was slower, except for the tasks of the queued pool. Medians in ns on two busy
// x86 processors (a spin of 5 us was slower still, and so were three yields after the spin):
//                                  this wait  futex, 1.5 us spin  futex, no spin
//   QBLThreadPoolFixed round trip        561                 769             795
//   QBLThreadPoolQueued round trip       646                1511            1384
//   QBLThreadPoolVariable per task       372                 789             682
//   QBLThreadPoolQueued per task         109                 120              91
// Besides, a cancellation takes effect in sem_wait, but not in a call of futex.
//
// A mistake here loses a post, and then a waiter sleeps for ever:
// TavSemaphoreTest.BoundedWaitLosesNoPostAndSynchronizesMemory and
// BoundedWaitHandsOverBackAndForth stop or count wrong, some mistakes only in one of several runs
// (--gtest_repeat). The thread sanitizer reports a hand-over without an order (preset x64-tsan, and
// ThreadsTsanUser for a library that is compiled without). The benchmarks roundTrip and throughput
// of QBLThreadPoolBench show what the constants cost.
#include <sched.h>

#include <cstdint>
#include <ctime>

#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/shared/TavSemaphoreRecord.hpp"

namespace {

constexpr int kTopScore = 8;
constexpr int kTryScore = 4;  // of an attempt after some time without
constexpr std::int64_t kPauseNsPerScore = 1200;
constexpr int kPauses = 4;  // between two looks at the count
constexpr int kYields = 3;
// Short sleeps until the next attempt: after pauses or yields without success, and after a yield
// that gave the processor to a busy thread for so long that a thousand short sleeps are cheaper.
constexpr int kAfterMisses = -16;
constexpr int kAfterLongYield = -4000;
constexpr std::int64_t kLongYieldNs = 200000;
constexpr std::int64_t kShortSleepNs = 50000;

std::int64_t monotonicNs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

/// A waiter that looks for a post, which posts may be promised to until it has taken one or left.
class Looker {
public:
    explicit Looker(TavSemaphore* s) : m_semaphore(s) {
        s->looking.fetch_add(kTavLooker, std::memory_order_relaxed);
    }
    Looker(const Looker&) = delete;
    Looker& operator=(const Looker&) = delete;

    /// @return true if it has taken a post, and with it left.
    bool look() {
        if (takePromise()) return true;
        if (sem_trywait(&m_semaphore->native) != 0) return false;
        std::uint32_t looking = m_semaphore->looking.load(std::memory_order_relaxed);
        while (tavPromises(looking) == 0)
            if (m_semaphore->looking.compare_exchange_weak(looking, looking - kTavLooker,
                                                           std::memory_order_relaxed))
                return true;
        // There is a promise now. The post that was taken goes back first, so that the count never
        // seems lower than it is.
        sem_post(&m_semaphore->native);
        return takePromise();
    }
    /// @return true if it had to take a post that it was promised.
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

/// Brings the next attempt nearer.
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

/// Finds a post by a thread that waits for this processor.
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
    // The thread sanitizer does not know this call as one that takes what sem_post released.
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
