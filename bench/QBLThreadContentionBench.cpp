#include <atomic>
#include <mutex>
#include <thread>

#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "bench/support/Bench.hpp"

namespace {

/// Two threads on different processors count to a common goal under one lock. So both threads
/// contend until the end of the round, even if one thread gets the lock more often.
template <class Lock>
class Contest {
public:
    Contest() : m_rival([this] { rival(); }) {}
    ~Contest() {
        m_iGoal = -1;
        m_rival.join();
    }
    Contest(const Contest&) = delete;
    Contest& operator=(const Contest&) = delete;

    bool pinned() {
        while (m_iPinned == 0) std::this_thread::yield();
        return m_iPinned > 0 && m_here.done();
    }

    /// @return the count of both threads; differs from operations only if the lock is broken
    int round(int operations) {
        m_iCount = 0;
        m_bRivalDone = false;
        m_iGoal = operations;
        countTo(operations);
        while (!m_bRivalDone) {
        }
        return m_iCount;
    }

private:
    void countTo(int goal) {
        for (bool done = false; !done;) {
            m_lock.lock();
            if (m_iCount < goal)
                ++m_iCount;
            else
                done = true;
            m_lock.unlock();
        }
    }
    void rival() {
        const Pinned there(1);
        m_iPinned = there.done() ? 1 : -1;
        for (;;) {
            int goal;
            while ((goal = m_iGoal) == 0) {
            }
            if (goal < 0) return;
            m_iGoal = 0;
            countTo(goal);
            m_bRivalDone = true;
        }
    }

    const Pinned m_here{0};
    // Each of these members has its own cache line. Otherwise the result would depend on whether a
    // lock and the data share a cache line.
    alignas(64) Lock m_lock;
    alignas(64) int m_iCount = 0;             // guarded by m_lock during a round
    alignas(64) std::atomic<int> m_iGoal{0};  // 0 between rounds, -1 ends the rival
    std::atomic<bool> m_bRivalDone{false};
    std::atomic<int> m_iPinned{0};
    std::thread m_rival;  // last, because it uses the other members
};

template <class Lock>
void contend(benchmark::State& state) {
    const int batch = 10000;
    Contest<Lock> contest;
    if (!contest.pinned()) {
        state.SkipWithError("needs two processors");
        return;
    }
    while (state.KeepRunningBatch(batch))
        if (contest.round(batch) != batch) state.SkipWithError("the lock let both threads in");
}

BENCHMARK_TEMPLATE(contend, QBLThreadMutex)->Name("BM_QBLThreadMutex_contended")->UseRealTime();
BENCHMARK_TEMPLATE(contend, QBLThreadCriticalSection)
    ->Name("BM_QBLThreadCriticalSection_contended")
    ->UseRealTime();
BENCHMARK_TEMPLATE(contend, std::mutex)->Name("BM_StdMutex_contended")->UseRealTime();

}  // namespace
