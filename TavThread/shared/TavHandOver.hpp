#ifndef TAVTHREAD_SHARED_TAVHANDOVER_HPP
#define TAVTHREAD_SHARED_TAVHANDOVER_HPP

// If the program is compiled with ThreadSanitizer and the library is not, ThreadSanitizer sees the
// library's calls of POSIX functions, but not its atomic operations. These functions report
// hand-overs that use only atomic operations. Without ThreadSanitizer, they only compare an address
// with null. ThreadSanitizer exists only for 64 bits.

#ifdef __x86_64__
extern "C" {
void __tsan_acquire(void* address) __attribute__((weak));
void __tsan_release(void* address) __attribute__((weak));
}
#endif

/// Call this after the operation that takes over data through this object.
inline void tavTaken([[maybe_unused]] void* object) {
#ifdef __x86_64__
    if (__builtin_expect(__tsan_acquire != nullptr, 0)) __tsan_acquire(object);
#endif
}

/// Call this before the operation that hands over data through this object.
inline void tavHandingOver([[maybe_unused]] void* object) {
#ifdef __x86_64__
    if (__builtin_expect(__tsan_release != nullptr, 0)) __tsan_release(object);
#endif
}

#endif
