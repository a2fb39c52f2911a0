#include <semaphore.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

#include "bench/support/Bench.hpp"
#include "bench/support/Pools.hpp"

namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

/// Measures from the call of submit() to the start of the task, in a pool whose workers sleep. The
/// submitter sleeps while the task runs.
template <class Pool>
void latency(benchmark::State& state) {
    sem_t ran;
    sem_init(&ran, 0, 0);
    std::vector<double> samples;
    {
        Clock::time_point started;
        Pool pool;
        auto body = [&started, &ran] {
            started = Clock::now();
            sem_post(&ran);
        };
        typename Pool::template Task<decltype(body)> task(body);
        for (auto _ : state) {
            std::this_thread::sleep_for(std::chrono::microseconds(1500));
            const Clock::time_point submitted = Clock::now();
            pool.submit(task);
            while (sem_wait(&ran) != 0) {
            }
            const Microseconds taken = started - submitted;
            samples.push_back(taken.count());
            state.SetIterationTime(taken.count() / 1e6);
        }
    }
    sem_destroy(&ran);
    if (samples.empty()) return;
    std::sort(samples.begin(), samples.end());
    const auto quantile = [&samples](std::size_t percent) {
        return samples[(samples.size() - 1) * percent / 100];
    };
    state.counters["p50_us"] = quantile(50);
    state.counters["p99_us"] = quantile(99);
    state.counters["max_us"] = quantile(100);
}

// A fixed number of iterations: 500 samples are enough for the 99th percentile.
#define LATENCY_BENCHMARK(Pool, name) \
    BENCHMARK_TEMPLATE(latency, Pool)->Name("BM_" name "_latency")->UseManualTime()->Iterations(500)

LATENCY_BENCHMARK(OurPool<TwoFixed>, "QBLThreadPoolFixed");
LATENCY_BENCHMARK(OurPool<TwoQueued>, "QBLThreadPoolQueued");
LATENCY_BENCHMARK(OurPool<TwoVariable>, "QBLThreadPoolVariable");
#ifdef BENCH_HAVE_BOOST
LATENCY_BENCHMARK(AsioPool, "BoostAsio");
#endif

}  // namespace
