#ifndef TESTS_SUPPORT_WORKERS_HPP
#define TESTS_SUPPORT_WORKERS_HPP

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

/// The longest time in milliseconds that a test waits for an event that should come at once.
constexpr unsigned long kTestLimitMs = 20000;

#ifdef __SANITIZE_THREAD__
constexpr bool kThreadSanitizer = true;
#else
constexpr bool kThreadSanitizer = false;
#endif

/// True in sanitizer builds. They are slow, so tests run a tenth of the rounds there.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitizer = true;
#else
constexpr bool kSanitizer = false;
#endif

/// Waits until the condition is true. Returns false if this takes longer than kTestLimitMs.
template <class Condition>
bool eventually(const Condition& condition) {
    using Clock = std::chrono::steady_clock;
    const auto limit = Clock::now() + std::chrono::milliseconds(kTestLimitMs);
    while (!condition()) {
        if (Clock::now() > limit) return false;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

/// Runs a body on several threads; join() or the destructor waits for all of them.
class Workers {
public:
    template <class Body>
    Workers(int count, Body body) {
        for (int i = 0; i < count; ++i) m_threads.emplace_back(body);
    }
    ~Workers() { join(); }
    void join() {
        for (std::thread& t : m_threads)
            if (t.joinable()) t.join();
    }

private:
    std::vector<std::thread> m_threads;
};

/// Makes threads wait until the test opens it. An open gate stays open.
class Gate {
public:
    void open() { m_bOpen = true; }
    bool wait() {
        return eventually([this] { return m_bOpen.load(); });
    }

private:
    std::atomic<bool> m_bOpen{false};
};

#endif
