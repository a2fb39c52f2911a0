#ifndef TAVTHREAD_SHARED_TAVCONTAIN_HPP
#define TAVTHREAD_SHARED_TAVCONTAIN_HPP

#include <cxxabi.h>

/// For functions that catch abi::__forced_unwind, by which the C library ends a thread from
/// within: there is no object behind that reference, which the sanitizer takes for an error.
#define TAV_CATCHES_UNWINDING __attribute__((no_sanitize("null")))

/// Runs other people's code, of which nothing but the end of the thread may leave.
/// @return false if it threw.
template <class Body>
TAV_CATCHES_UNWINDING bool tavContain(Body&& body) {
    try {
        body();
    } catch (abi::__forced_unwind&) {
        throw;
    } catch (...) {
        return false;
    }
    return true;
}

#endif
