#include "QBLCore/Threads/QBLThreadMutex.hpp"

#include <mutex>

#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadRecursiveMutex.hpp"
#include "bench/support/Bench.hpp"

namespace {

template <class Lock>
void lockUnlock(benchmark::State& state) {
    Lock lock;
    int guarded = 0;
    for (auto _ : state) {
        lock.lock();
        benchmark::DoNotOptimize(++guarded);
        lock.unlock();
    }
}

template <class Lock, class Guard>
void guardScope(benchmark::State& state) {
    Lock lock;
    int guarded = 0;
    for (auto _ : state) {
        Guard guard(lock);
        benchmark::DoNotOptimize(++guarded);
    }
}

/// Locks twice, which only a recursive lock allows.
template <class Lock>
void lockTwice(benchmark::State& state) {
    Lock lock;
    int guarded = 0;
    for (auto _ : state) {
        lock.lock();
        lock.lock();
        benchmark::DoNotOptimize(++guarded);
        lock.unlock();
        lock.unlock();
    }
}

BENCHMARK_TEMPLATE(lockUnlock, QBLThreadMutex)->Name("BM_QBLThreadMutex_lockUnlock");
BENCHMARK_TEMPLATE(lockUnlock, QBLThreadCriticalSection)
    ->Name("BM_QBLThreadCriticalSection_lockUnlock");
BENCHMARK_TEMPLATE(lockUnlock, std::mutex)->Name("BM_StdMutex_lockUnlock");

BENCHMARK_TEMPLATE(guardScope, QBLThreadMutex, QBLThreadGuard)->Name("BM_QBLThreadGuard_scope");
BENCHMARK_TEMPLATE(guardScope, std::mutex, std::lock_guard<std::mutex>)
    ->Name("BM_StdLockGuard_scope");

BENCHMARK_TEMPLATE(lockUnlock, QBLThreadRecursiveMutex)
    ->Name("BM_QBLThreadRecursiveMutex_lockUnlock");
BENCHMARK_TEMPLATE(lockUnlock, std::recursive_mutex)->Name("BM_StdRecursiveMutex_lockUnlock");
BENCHMARK_TEMPLATE(lockTwice, QBLThreadRecursiveMutex)
    ->Name("BM_QBLThreadRecursiveMutex_lockTwice");
BENCHMARK_TEMPLATE(lockTwice, std::recursive_mutex)->Name("BM_StdRecursiveMutex_lockTwice");

}  // namespace
