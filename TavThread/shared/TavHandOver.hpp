#ifndef TAVTHREAD_SHARED_TAVHANDOVER_HPP
#define TAVTHREAD_SHARED_TAVHANDOVER_HPP

#include <pthread.h>

// If the program is compiled with ThreadSanitizer and the library is not, ThreadSanitizer sees the
// library's calls of POSIX functions, but not its atomic operations. These functions report
// hand-overs that use only atomic operations. Without ThreadSanitizer, they only compare an address
// with null. ThreadSanitizer exists only for 64 bits.

#ifdef __x86_64__
extern "C" {
void __tsan_acquire(void* address) __attribute__((weak));
void __tsan_release(void* address) __attribute__((weak));
void __tsan_mutex_pre_lock(void* mutex, unsigned flags) __attribute__((weak));
void __tsan_mutex_post_lock(void* mutex, unsigned flags, int recursion) __attribute__((weak));
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

/// Reports a lock with a timeout to ThreadSanitizer, which does not know pthread_mutex_clocklock.
/// Construct it before the call, and pass the result of the call to operator().
class TavTryReport {
public:
    explicit TavTryReport([[maybe_unused]] pthread_mutex_t* mutex) {
#ifdef __x86_64__
        m_pMutex = mutex;
        if (reports()) __tsan_mutex_pre_lock(mutex, kTry);
#endif
    }
    /// Returns the result.
    int operator()(int err) const {
#ifdef __x86_64__
        if (reports()) __tsan_mutex_post_lock(m_pMutex, err == 0 ? kTry : kTry | kFailed, 0);
#endif
        return err;
    }

#ifdef __x86_64__
private:
    static constexpr unsigned kTry = 16, kFailed = 32;  // of sanitizer/tsan_interface.h
    static bool reports() {
        return __builtin_expect(__tsan_mutex_pre_lock != nullptr, 0) &&
               __tsan_mutex_post_lock != nullptr;
    }
    pthread_mutex_t* m_pMutex;
#endif
};

#endif
