#ifndef TAVTHREAD_SHARED_TAVCONTAIN_HPP
#define TAVTHREAD_SHARED_TAVCONTAIN_HPP

#include <cxxabi.h>

/// For functions that catch abi::__forced_unwind, which the C library throws to end a thread. The
/// caught reference refers to no object, and the sanitizer reports that as an error.
#define TAV_CATCHES_UNWINDING __attribute__((no_sanitize("null")))

/// Runs code of a user, such as a callback. Drops its exceptions; only abi::__forced_unwind, the
/// end of the thread, passes through.
/// @return false if the code threw an exception.
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
