#include "QBLCore/Threads/QBLThreadAutoResetEvent.hpp"

#include <condition_variable>
#include <mutex>

#include "bench/support/Bench.hpp"

namespace {

/// The code that a program writes without an event class.
class HandMadeEvent {
public:
    void signal() {
        std::lock_guard<std::mutex> guard(m_mutex);
        m_bSignaled = true;
        m_changed.notify_one();
    }
    void wait() {
        std::unique_lock<std::mutex> guard(m_mutex);
        m_changed.wait(guard, [this] { return m_bSignaled; });
        m_bSignaled = false;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_bSignaled = false;  // guarded by m_mutex
};

/// A single thread signals and waits, so wait() always finds the event signaled.
template <class Event>
void signalWait(benchmark::State& state) {
    Event event;
    for (auto _ : state) {
        event.signal();
        event.wait();
    }
}

BENCHMARK_TEMPLATE(signalWait, QBLThreadAutoResetEvent)
    ->Name("BM_QBLThreadAutoResetEvent_signalWait");
BENCHMARK_TEMPLATE(signalWait, HandMadeEvent)->Name("BM_MutexAndCondition_signalWait");

}  // namespace
