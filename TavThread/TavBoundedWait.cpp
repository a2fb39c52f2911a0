#include <sched.h>

#include <cstdint>
#include <ctime>

#include "TavThread/internal/TavSemaphoreRecord.hpp"
#include "TavThread/internal/TavSystem.hpp"

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace {

constexpr int kPauses = 40;  // between two looks at the count
constexpr int kLooks = 50;
constexpr int kYields = 8;
constexpr int kTopScore = 8;
constexpr std::int64_t kShortNs = 50000;  // a sleep this short would have been better spent looking

std::int64_t monotonicNs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

/// Whoever posts needs a processor of its own while we look.
bool severalProcessors() {
    static std::atomic<int> s_known{0};
    int known = s_known.load(std::memory_order_relaxed);
    if (known == 0) {
        cpu_set_t set;
        const bool several = sched_getaffinity(0, sizeof set, &set) != 0 || CPU_COUNT(&set) > 1;
        known = several ? 2 : 1;
        s_known.store(known, std::memory_order_relaxed);
    }
    return known == 2;
}

bool take(TavSemaphore* s) { return sem_trywait(&s->native) == 0; }

bool takeActively(TavSemaphore* s) {
    for (int look = 0; look < kLooks; ++look) {
        for (int i = 0; i < kPauses; ++i) __builtin_ia32_pause();
        if (take(s)) return true;
    }
    for (int i = 0; i < kYields; ++i) {
        sched_yield();
        if (take(s)) return true;
    }
    return false;
}

void score(TavSemaphore* s, int by) {
    int now = s->spinScore.load(std::memory_order_relaxed) + by;
    now = now < 0 ? 0 : now > kTopScore ? kTopScore : now;
    s->spinScore.store(now, std::memory_order_relaxed);
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
    if (take(s)) return TAVTHREAD_OK;
    if (ms == 0) return TAVTHREAD_TIMEOUT;
    const std::int64_t start = monotonicNs();
    const bool looked = s->spinScore.load(std::memory_order_relaxed) > 0 && severalProcessors();
    if (looked) {
        if (takeActively(s)) {
            score(s, 1);
            return TAVTHREAD_OK;
        }
        score(s, -1);
    }
    const int err = takeAsleep(s, ms, start);
    if (err == 0 && !looked && monotonicNs() - start < kShortNs) score(s, 1);
    return tavThread_MapError(err);
}
