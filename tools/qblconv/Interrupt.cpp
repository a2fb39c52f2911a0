#include "tools/qblconv/Interrupt.hpp"

#include <poll.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <initializer_list>

namespace conv {

namespace {

constexpr int kEach = 100;  // milliseconds between two checks for a signal
std::atomic<int> g_signal{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler writes it");

void note(int signal) { g_signal = signal; }

}  // namespace

void catchInterrupts() {
    // While this signal is ignored, a write beyond the limit for file sizes fails with EFBIG, which
    // the tool reports.
    std::signal(SIGXFSZ, SIG_IGN);
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGPIPE}) {
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) continue;
        action = {};
        action.sa_handler = note;
        // Signals interrupt reads (no SA_RESTART). A second signal ends the process at once, except
        // SIGPIPE: a second thread that writes to the same pipe gets that signal too.
        action.sa_flags = signal == SIGPIPE ? 0 : static_cast<int>(SA_RESETHAND);
        sigaction(signal, &action, nullptr);
    }
}

bool isInterrupted() { return g_signal.load(std::memory_order_relaxed) != 0; }

bool waitToRead(int descriptor) {
    pollfd file = {descriptor, POLLIN, 0};
    while (!isInterrupted()) {
        const int ready = poll(&file, 1, kEach);
        // If poll() fails, the following read reports why.
        if (ready > 0 || (ready < 0 && errno != EINTR)) return true;
    }
    return false;
}

void pauseFor(int milliseconds) { poll(nullptr, 0, milliseconds); }

void endIfInterrupted() {
    const int signal = g_signal;
    if (signal == 0) return;
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

}  // namespace conv
