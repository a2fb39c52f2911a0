#include "QBLCore/Threads/QBLThreadRWLock.hpp"

#include <pthread.h>

#include "bench/support/Bench.hpp"

namespace {

class PeerRWLock {
public:
    ~PeerRWLock() { pthread_rwlock_destroy(&m_lock); }
    void readLock() { pthread_rwlock_rdlock(&m_lock); }
    void lock() { pthread_rwlock_wrlock(&m_lock); }
    void unlock() { pthread_rwlock_unlock(&m_lock); }

private:
    pthread_rwlock_t m_lock = PTHREAD_RWLOCK_INITIALIZER;
};

template <class Lock>
void readLockUnlock(benchmark::State& state) {
    Lock lock;
    int guarded = 0;
    for (auto _ : state) {
        lock.readLock();
        benchmark::DoNotOptimize(guarded);
        lock.unlock();
    }
}

template <class Lock>
void writeLockUnlock(benchmark::State& state) {
    Lock lock;
    int guarded = 0;
    for (auto _ : state) {
        lock.lock();
        benchmark::DoNotOptimize(++guarded);
        lock.unlock();
    }
}

BENCHMARK_TEMPLATE(readLockUnlock, QBLThreadRWLock)->Name("BM_QBLThreadRWLock_readLockUnlock");
BENCHMARK_TEMPLATE(readLockUnlock, PeerRWLock)->Name("BM_PthreadRWLock_readLockUnlock");
BENCHMARK_TEMPLATE(writeLockUnlock, QBLThreadRWLock)->Name("BM_QBLThreadRWLock_lockUnlock");
BENCHMARK_TEMPLATE(writeLockUnlock, PeerRWLock)->Name("BM_PthreadRWLock_lockUnlock");

}  // namespace
