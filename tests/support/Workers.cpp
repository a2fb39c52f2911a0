#include "tests/support/Workers.hpp"

#include <chrono>

bool eventually(const std::function<bool()>& condition) {
    using Clock = std::chrono::steady_clock;
    const auto limit = Clock::now() + std::chrono::milliseconds(kTestLimitMs);
    while (!condition()) {
        if (Clock::now() > limit) return false;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}
