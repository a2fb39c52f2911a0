#ifndef TESTS_SUPPORT_WORKERS_HPP
#define TESTS_SUPPORT_WORKERS_HPP

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

/// Longest a test waits for something that should happen at once, in milliseconds.
constexpr unsigned long kTestLimitMs = 20000;

#ifdef __SANITIZE_THREAD__
constexpr bool kThreadSanitizer = true;
#else
constexpr bool kThreadSanitizer = false;
#endif

/// Where a tenth of the rounds has to do.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitizer = true;
#else
constexpr bool kSanitizer = false;
#endif

/// Waits until the condition holds; false when that takes longer than kTestLimitMs.
bool eventually(const std::function<bool()>& condition);

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

/// A door that stays open once opened: lets a test decide when threads go on.
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
