#include "tools/qblconv/Interrupt.hpp"

#include <atomic>
#include <csignal>
#include <initializer_list>

namespace conv {

namespace {

std::atomic<int> g_signal{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler writes it");

void note(int signal) { g_signal = signal; }

}  // namespace

void catchInterrupts() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) continue;
        action = {};
        action.sa_handler = note;
        action.sa_flags = static_cast<int>(SA_RESETHAND);  // and reads are broken off
        sigaction(signal, &action, nullptr);
    }
}

bool isInterrupted() { return g_signal.load(std::memory_order_relaxed) != 0; }

void endIfInterrupted() {
    const int signal = g_signal;
    if (signal == 0) return;
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

}  // namespace conv
