// soak SECONDS [SEED]: 16 threads use every part of the library. Checks what must hold all the
// time, and that threads, descriptors and memory are the same at the end as after the first rounds.
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/soak/Soak.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/Workers.hpp"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer gives the name
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
// The unwinding of a cancelled thread leaves the sanitizer's marks on the stack. They are no fault
// of the call that the sanitizer itself makes to find the end of the stack and to remove the marks.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer gives the name
extern "C" [[gnu::visibility("default")]] const char* __asan_default_suppressions();
const char* __asan_default_suppressions() { return "interceptor_name:sigaltstack"; }
#endif

namespace soak {

void need(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "soak: %s\n", what);
    std::abort();
}
const std::string& directory() {
    static const TempTree kTree;
    static const std::string kRoot = kTree.root();
    return kRoot;
}
void start() {
    need(qblCoreInitialize() == 0, "the library does not start");
    I18NInitialize();
}
void stop() {
    I18NTerminate();
    need(qblCoreTerminate() == 0, "the library does not stop");
}

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kThreads = 16, kWarmRounds = 4;
// What the heap's caches and the tables of the string pool may add after the first rounds.
constexpr long kMoreBlocks = 256 * 1024, kMoreResident = 24 * 1024 * 1024;

/// What the process uses.
struct Usage {
    long threads, descriptors;
    long blocks;    // bytes in live blocks
    long resident;  // bytes in memory
};

long entries(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

Usage usage() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    const auto live = static_cast<long>(__sanitizer_get_current_allocated_bytes());
#else
    const struct mallinfo2 info = mallinfo2();
    const auto live = static_cast<long>(info.uordblks) + static_cast<long>(info.hblkhd);
#endif
    long total = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return {entries("/proc/self/task"), entries("/proc/self/fd") - 1, live,
            resident * sysconf(_SC_PAGESIZE)};
}

/// Does jobs on all threads. @return the number of jobs
long work(unsigned seed, bool isAlone, std::chrono::milliseconds time) {
    std::atomic<long> done{0};
    std::atomic<unsigned> next{seed * kThreads};
    const auto end = Clock::now() + time;
    Workers(kThreads, [&] {
        for (Random random(next++); Clock::now() < end; ++done) {
            const Job& job = random.of(kJobs);
            if (isAlone && !job.isAlone) continue;
            if (isAlone) start();
            try {
                job.work(random);
            } catch (QBLThrowable& error) {
                need(false, (std::string(job.name) + " throws " + error.toString()).c_str());
            }
            if (isAlone) stop();
        }
    }).join();
    return done;
}

/// First starts and stops the library all the time, then keeps it running for the other jobs.
long runRound(unsigned seed, std::chrono::milliseconds time) {
    long jobs = work(seed, true, time / 4);
    start();
    {
        const auto shared = share();
        jobs += work(seed + 1, false, time - time / 4);
    }
    I18NPooledString::purge();
    stop();
    return jobs;
}

int run(long seconds, unsigned seed) {
    std::printf("seed %u\n", seed);
    QBLCustodian::setSchedule(5);
    static_cast<void>(directory());
    // At least twice as many rounds as warm the caches, and each at most ten seconds.
    const std::chrono::milliseconds round(std::min(10000L, seconds * 1000 / (2 * kWarmRounds)));
    const auto end = Clock::now() + std::chrono::seconds(seconds);
    Usage warm = {}, now = {};
    long jobs = 0;
    for (int i = 1; i <= 2 * kWarmRounds || Clock::now() < end; ++i) {
        jobs += runRound(seed + 2U * static_cast<unsigned>(i), round);
        now = usage();
        if (i == kWarmRounds) warm = now;
        std::printf("round %4d: %9ld jobs, %2ld threads, %2ld descriptors, ", i, jobs, now.threads,
                    now.descriptors);
        std::printf("%6ld KiB live, %7ld KiB resident\n", now.blocks / 1024, now.resident / 1024);
        std::fflush(stdout);
    }
    // The system lists a joined thread for a moment.
    need(eventually([&] { return (now = usage()).threads <= warm.threads; }), "threads stay");
    need(now.descriptors <= warm.descriptors, "descriptors stay open");
    need(now.blocks <= warm.blocks + kMoreBlocks, "blocks stay allocated");
    need(kSanitizer || now.resident <= warm.resident + kMoreResident, "memory grows");
    std::printf("%ld jobs; all invariants hold\n", jobs);
    return 0;
}

}  // namespace
}  // namespace soak

int main(int argc, char** argv) {
    setenv("TAV_EXEC_PATH", QBL_RES_DIR, 1);
    if (argc < 2 || argc > 3) return 2;
    return soak::run(std::atol(argv[1]),
                     argc == 3 ? static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10)) : 1);
}
