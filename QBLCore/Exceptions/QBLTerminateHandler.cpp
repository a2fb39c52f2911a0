#include "QBLCore/Exceptions/QBLTerminateHandler.hpp"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "QBLCore/Exceptions/QBLThrowable.hpp"

namespace {

std::atomic<std::terminate_handler> g_previous{nullptr};

void write(const char* text) { std::fprintf(stderr, "%s\n", text != nullptr ? text : ""); }

[[noreturn]] void report() {
    try {
        if (std::current_exception() != nullptr) throw;
    } catch (QBLThrowable& e) {
        try {
            write(e.toString());
        } catch (...) {
            write(e.getThrowableName());
        }
    } catch (const std::exception& e) {
        write(e.what());
    } catch (...) {
        // The previous handler may know this exception.
    }
    const std::terminate_handler previous = g_previous;
    if (previous != nullptr) previous();
    std::abort();
}

}  // namespace

void qblInstallTerminateHandler() {
    // Installs the handler only once. If it were installed again after another handler that calls
    // it, the two handlers would call each other endlessly.
    static const bool kInstalled = [] {
        g_previous = std::set_terminate(report);
        return true;
    }();
    static_cast<void>(kInstalled);
}
