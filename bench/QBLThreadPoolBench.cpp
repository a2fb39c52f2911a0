#include <semaphore.h>

#include <atomic>
#include <thread>

#include "bench/support/Bench.hpp"
#include "bench/support/Pools.hpp"

namespace {

/// Counts the tasks that are left. The last task wakes the submitter, which uses no processor time
/// while it waits.
class Tally {
public:
    Tally() { sem_init(&m_done, 0, 0); }
    ~Tally() { sem_destroy(&m_done); }
    Tally(const Tally&) = delete;
    Tally& operator=(const Tally&) = delete;

    void expect(int tasks) { m_iLeft = tasks; }
    void arrive() {
        if (m_iLeft.fetch_sub(1) == 1) sem_post(&m_done);
    }
    void wait() {
        while (sem_wait(&m_done) != 0) {
        }
    }
    /// Waits until fewer than this number of tasks are left.
    void waitBelow(int tasks) const {
        while (m_iLeft >= tasks) std::this_thread::yield();
    }

private:
    std::atomic<int> m_iLeft{0};
    sem_t m_done;
};

/// Submits a task the given number of times and waits until all runs are done.
template <class Pool, class Task>
void runBatch(Pool& pool, Task& task, Tally& tally, int tasks) {
    tally.expect(tasks);
    for (int i = 0; i < tasks; ++i) pool.submit(task);
    tally.wait();
}

/// The submitter runs ahead of the workers without a limit.
template <class Pool>
void throughput(benchmark::State& state) {
    const int batch = 10000;
    Tally tally;
    Pool pool;
    auto body = [&tally] { tally.arrive(); };
    typename Pool::template Task<decltype(body)> task(body);
    runBatch(pool, task, tally, batch);
    while (state.KeepRunningBatch(batch)) runBatch(pool, task, tally, batch);
}

/// The submitter keeps at most one task per worker in the pool.
template <class Pool>
void throughputInStep(benchmark::State& state) {
    const int batch = 10000, workers = 2;
    Tally tally;
    Pool pool;
    auto body = [&tally] { tally.arrive(); };
    typename Pool::template Task<decltype(body)> task(body);
    while (state.KeepRunningBatch(batch)) {
        tally.expect(batch);
        for (int i = 0; i < batch; ++i) {
            tally.waitBelow(batch - i + workers);  // batch - i tasks are not submitted yet
            pool.submit(task);
        }
        tally.wait();
    }
}

/// Submits one task at a time. The submitter polls until the task has ended, and yields between
/// polls.
template <class Pool>
void roundTrip(benchmark::State& state) {
    std::atomic<bool> done{false};
    Pool pool;
    auto body = [&done] { done.store(true, std::memory_order_release); };
    typename Pool::template Task<decltype(body)> task(body);
    for (auto _ : state) {
        done.store(false, std::memory_order_relaxed);
        pool.submit(task);
        while (!done.load(std::memory_order_acquire)) std::this_thread::yield();
    }
}

/// Returns true if every task of a batch runs once. A lost task makes the wait endless; an extra
/// run makes the count too high.
template <class Pool>
bool runsEachOnce() {
    std::atomic<int> runs{0};
    Tally tally;
    {
        Pool pool;
        auto body = [&runs, &tally] {
            ++runs;
            tally.arrive();
        };
        typename Pool::template Task<decltype(body)> task(body);
        runBatch(pool, task, tally, 100);
    }
    return runs == 100;
}

const OutputCheck check("thread pools", [] {
    return runsEachOnce<OurPool<TwoFixed>>() && runsEachOnce<OurPool<TwoQueued>>() &&
           runsEachOnce<OurPool<TwoVariable>>()
#ifdef BENCH_HAVE_BOOST
           && runsEachOnce<AsioPool>()
#endif
#ifdef BENCH_HAVE_POCO
           && runsEachOnce<PocoPool>()
#endif
        ;
});

#define POOL_BENCHMARK(operation, Pool, name) \
    BENCHMARK_TEMPLATE(operation, Pool)->Name("BM_" name "_" #operation)->UseRealTime()

POOL_BENCHMARK(throughput, OurPool<TwoFixed>, "QBLThreadPoolFixed");
POOL_BENCHMARK(throughput, OurPool<TwoQueued>, "QBLThreadPoolQueued");
POOL_BENCHMARK(throughput, OurPool<TwoVariable>, "QBLThreadPoolVariable");
POOL_BENCHMARK(throughputInStep, OurPool<TwoVariable>, "QBLThreadPoolVariable");
POOL_BENCHMARK(roundTrip, OurPool<TwoFixed>, "QBLThreadPoolFixed");
POOL_BENCHMARK(roundTrip, OurPool<TwoQueued>, "QBLThreadPoolQueued");
POOL_BENCHMARK(roundTrip, OurPool<TwoVariable>, "QBLThreadPoolVariable");
#ifdef BENCH_HAVE_BOOST
POOL_BENCHMARK(throughput, AsioPool, "BoostAsio");
POOL_BENCHMARK(throughputInStep, AsioPool, "BoostAsio");
POOL_BENCHMARK(roundTrip, AsioPool, "BoostAsio");
#endif
#ifdef BENCH_HAVE_POCO
POOL_BENCHMARK(throughput, PocoPool, "PocoThreadPool");
#endif

}  // namespace
