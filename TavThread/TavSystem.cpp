#include "TavThread/internal/TavSystem.hpp"

#include <sched.h>
#include <sys/time.h>

#include <atomic>
#include <cstdint>
#include <limits>

void tavSleepMs(unsigned ms) {
    timespec left{};
    left.tv_sec = static_cast<time_t>(ms / 1000);
    left.tv_nsec = static_cast<long>(ms % 1000) * 1000000L;
    while (nanosleep(&left, &left) == -1 && errno == EINTR) {
    }
}

int tavWaitOn(pthread_cond_t* condition, pthread_mutex_t* mutex, unsigned ms) {
    if (ms == TAVTHREAD_INFINITE)
        return tavThread_MapError(tavRetry([&] { return pthread_cond_wait(condition, mutex); }));
    timeval now{};
    if (const int err = tavRetryErrno([&] { return gettimeofday(&now, nullptr); }))
        return err == EPERM || err == ENOSYS ? TAVTHREAD_NOTSUPPORTED : tavThread_MapError(err);
    std::int64_t seconds = static_cast<std::int64_t>(now.tv_sec) + ms / 1000;
    std::int64_t nanoseconds = static_cast<std::int64_t>(now.tv_usec) * 1000 +
                               static_cast<std::int64_t>(ms % 1000) * 1000000;
    if (nanoseconds > 999999999) {
        nanoseconds -= 1000000000;
        ++seconds;
    }
    constexpr std::int64_t kLast = std::numeric_limits<time_t>::max();
    timespec deadline{};
    deadline.tv_sec = static_cast<time_t>(seconds < kLast ? seconds : kLast);
    deadline.tv_nsec = static_cast<long>(nanoseconds);
    const int rc = tavThread_MapError(
        tavRetry([&] { return pthread_cond_timedwait(condition, mutex, &deadline); }));
    return rc == TAVTHREAD_BUSY ? TAVTHREAD_TIMEOUT : rc;
}

timespec tavDeadline(unsigned ms) {
    timespec end{};
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += static_cast<time_t>(ms / 1000);
    end.tv_nsec += static_cast<long>(ms % 1000) * 1000000L;
    if (end.tv_nsec > 999999999) {
        end.tv_nsec -= 1000000000;
        ++end.tv_sec;
    }
    return end;
}

int tavWaitUntil(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec& deadline) {
    return tavThread_MapError(tavRetry(
        [&] { return pthread_cond_clockwait(condition, mutex, CLOCK_MONOTONIC, &deadline); }));
}

bool tavSeveralProcessors() {
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
