#include <sched.h>

#include <cstdint>
#include <ctime>

#include "TavThread/internal/TavSemaphoreRecord.hpp"
#include "TavThread/internal/TavSystem.hpp"

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace {

constexpr int kTopScore = 8;
constexpr int kTryScore = 4;  // of an attempt after some time without
constexpr std::int64_t kPauseNsPerScore = 1200;
constexpr int kPauses = 16;  // between two looks at the count
constexpr int kYields = 3;
// Short sleeps until the next attempt: after pausing, or yielding, in vain, and after a yield that
// gave the processor to a busy thread for so long that a thousand short sleeps are cheaper.
constexpr int kAfterMisses = -16;
constexpr int kAfterLongYield = -4000;
constexpr std::int64_t kLongYieldNs = 200000;
constexpr std::int64_t kShortSleepNs = 50000;

std::int64_t monotonicNs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

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
bool takePausing(TavSemaphore* s) {
    const int score = scoreOf(s->pauseScore);
    if (score <= 0) return false;
    bool taken = false;
    for (const std::int64_t end = monotonicNs() + kPauseNsPerScore * score;
         !taken && monotonicNs() < end; taken = tavSemaphoreTakePlain(s))
        for (int i = 0; i < kPauses; ++i) __builtin_ia32_pause();
    learn(s->pauseScore, taken);
    return taken;
}

/// Finds a post by a thread that waits for this processor.
bool takeYielding(TavSemaphore* s) {
    if (scoreOf(s->yieldScore) <= 0) return false;
    const std::int64_t start = monotonicNs();
    bool taken = false;
    for (int i = 0; i < kYields && !taken; ++i) {
        sched_yield();
        taken = tavSemaphoreTakePlain(s);
    }
    if (monotonicNs() - start > kLongYieldNs)
        setScore(s->yieldScore, kAfterLongYield);
    else
        learn(s->yieldScore, taken);
    return taken;
}

int takeAsleep(TavSemaphore* s, unsigned ms, std::int64_t start) {
    if (ms == TAVTHREAD_INFINITE) return tavRetryErrno([s] { return sem_wait(&s->native); });
    const std::int64_t end = start + static_cast<std::int64_t>(ms) * 1000000;
    timespec deadline{};
    deadline.tv_sec = static_cast<time_t>(end / 1000000000);
    deadline.tv_nsec = static_cast<long>(end % 1000000000);
    const int err =
        tavRetryErrno([&] { return sem_clockwait(&s->native, CLOCK_MONOTONIC, &deadline); });
#ifdef __SANITIZE_THREAD__
    // The sanitizer does not know this call as one that takes what sem_post released.
    if (err == 0) __tsan_acquire(&s->native);
#endif
    return err;
}

}  // namespace

extern "C" int tavXSemaphoreBoundedWait(TavSemaphore* s, unsigned ms) {
    if (s == nullptr) return TAVTHREAD_INVALID;
    if (tavSemaphoreTakePlain(s)) return TAVTHREAD_OK;
    if (ms == 0) return TAVTHREAD_TIMEOUT;
    const std::int64_t start = monotonicNs();
    if (tavSeveralProcessors() && (takePausing(s) || takeYielding(s))) return TAVTHREAD_OK;
    const std::int64_t asleep = monotonicNs();
    const int err = takeAsleep(s, ms, start);
    if (err == 0 && monotonicNs() - asleep < kShortSleepNs) {
        learnFromShortSleep(s->pauseScore);
        learnFromShortSleep(s->yieldScore);
    }
    return tavThread_MapError(err);
}
