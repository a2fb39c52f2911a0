#ifndef TAVTHREAD_SHARED_TAVHANDOVER_HPP
#define TAVTHREAD_SHARED_TAVHANDOVER_HPP

// A program compiled for ThreadSanitizer, with a library that is not, shows it the calls of the
// POSIX functions, but not what the library hands over by atomics alone. These tell it. They cost a
// look at an address that is null without the sanitizer, which there is for 64 bits only.

#ifdef __x86_64__
extern "C" {
void __tsan_acquire(void* address) __attribute__((weak));
void __tsan_release(void* address) __attribute__((weak));
}
#endif

/// After the operation that took what another thread handed over by way of this object.
inline void tavTaken([[maybe_unused]] void* object) {
#ifdef __x86_64__
    if (__builtin_expect(__tsan_acquire != nullptr, 0)) __tsan_acquire(object);
#endif
}

/// Before the operation that hands it over.
inline void tavHandingOver([[maybe_unused]] void* object) {
#ifdef __x86_64__
    if (__builtin_expect(__tsan_release != nullptr, 0)) __tsan_release(object);
#endif
}

#endif
