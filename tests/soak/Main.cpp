// soak SECONDS [SEED]: 16 threads use every part of the library. Checks what must hold all the
// time, and that threads, descriptors and memory are the same at the end as after the first rounds.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/QBLCustodian/QBLCustodian.hpp"
#include "i18n/cpp/i18n_init.h"
#include "i18n/cpp/i18n_pooledstring.hpp"
#include "tests/soak/Soak.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/Workers.hpp"

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

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned kThreads = 16;
constexpr int kWarmRounds = 4;
// What the heap's caches and the tables of the string pool may add after the first rounds.
constexpr long kMoreBlocks = 256 * 1024, kMoreResident = 24 * 1024 * 1024;

void start() {
    need(qblCoreInitialize() == 0, "the library does not start");
    I18NInitialize();
}
void stop() {
    I18NTerminate();
    need(qblCoreTerminate() == 0, "the library does not stop");
}

long work(unsigned seed, Needs most, Clock::time_point end) {
    Random random(seed);
    long done = 0;
    for (; Clock::now() < end; ++done) {
        const std::vector<Job>& jobs = random.below(2) == 0 ? kLockJobs : kTextJobs;
        const Job& job = jobs[random.below(static_cast<unsigned>(jobs.size()))];
        if (job.needs > most) continue;
        if (most == kAlone) start();
        try {
            job.work(random);
        } catch (QBLThrowable& error) {
            std::fprintf(stderr, "soak: %s throws %s\n", job.name, error.toString());
            std::abort();
        }
        if (most == kAlone) stop();
    }
    return done;
}

long allWork(unsigned seed, Needs most, std::chrono::milliseconds time) {
    long done[kThreads] = {}, sum = 0;
    std::thread threads[kThreads];
    for (unsigned i = 0; i < kThreads; ++i)
        threads[i] = std::thread(
            [=, &done] { done[i] = work(seed * kThreads + i, most, Clock::now() + time); });
    for (std::thread& thread : threads) thread.join();
    for (const long each : done) sum += each;
    return sum;
}

/// First starts and stops the library all the time, then keeps it running for the other jobs.
long runRound(unsigned seed, std::chrono::milliseconds time) {
    long jobs = allWork(seed, kAlone, time / 4);
    start();
    makeSharedLocks();
    makeSharedTexts();
    jobs += allWork(seed + 1, kShared, time - time / 4);
    dropSharedTexts();
    dropSharedLocks();
    I18NPooledString::purge();
    stop();
    return jobs;
}

void print(int round, long jobs, const Usage& now) {
    std::printf(
        "round %4d: %9ld jobs, %2ld threads, %2ld descriptors, %6ld KiB live, %7ld KiB resident\n",
        round, jobs, now.threads, now.descriptors, now.blocks / 1024, now.resident / 1024);
    std::fflush(stdout);
}

int run(long seconds, unsigned seed) {
    std::printf("seed %u\n", seed);
    QBLCustodian::setSchedule(5);
    static_cast<void>(directory());
    // At least twice as many rounds as warm the caches, and each at most ten seconds.
    const auto round =
        std::chrono::milliseconds(std::min(10000L, seconds * 1000 / (2 * kWarmRounds)));
    const auto end = Clock::now() + std::chrono::seconds(seconds);
    Usage warm = {}, now = {};
    long jobs = 0;
    for (int i = 0; i < 2 * kWarmRounds || Clock::now() < end; ++i) {
        jobs += runRound(seed + 2U * static_cast<unsigned>(i), round);
        now = usage();
        if (i + 1 == kWarmRounds) warm = now;
        print(i + 1, jobs, now);
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
