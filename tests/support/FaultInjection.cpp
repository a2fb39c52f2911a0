#include "tests/support/FaultInjection.hpp"

#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

struct Plan {
    long left = -1;
    int error = 0;
    bool failed = false;
    unsigned long seen = 0;

    void set(long n, int err) {
        left = n;
        error = err;
        failed = false;
    }
    bool due() {
        ++seen;
        if (left < 0 || left-- > 0) return false;
        return failed = true;
    }
};

thread_local Plan t_allocation;
thread_local bool t_exhausted = false;
thread_local Plan t_calls[fault::kCallCount];

void* allocate(std::size_t n) noexcept {
    for (;;) {
        void* const p = t_exhausted || t_allocation.due() ? nullptr : std::malloc(n != 0 ? n : 1);
        const std::new_handler handler = p == nullptr ? std::get_new_handler() : nullptr;
        if (handler == nullptr) return p;
        handler();
    }
}

void* allocateOrThrow(std::size_t n) {
    if (void* p = allocate(n)) return p;
    if (t_allocation.error != 0) throw t_allocation.error;
    throw std::bad_alloc();
}

/// Returns the function that the hook replaces. Looks the function up once and stores it in
/// `known`, a static variable of the caller. The variable is constant-initialised, because a
/// dynamically initialised static needs a guard, and the first calls come too early for a guard,
/// while a sanitizer starts.
template <class Function>
Function real(std::atomic<Function>& known, const char* name) {
    Function function = known.load(std::memory_order_relaxed);
    if (function == nullptr) {
        function = reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
        known.store(function, std::memory_order_relaxed);
    }
    return function;
}

thread_local int t_beginError = 0;

struct Start {
    void* (*routine)(void*);
    void* arg;
    int error;
};

void* failToBegin(void* arg) {
    const Start start = *static_cast<Start*>(arg);
    delete static_cast<Start*>(arg);
    t_beginError = start.error;
    return start.routine(start.arg);
}

}  // namespace

namespace fault {

void failAllocation(long n, int thrown) { t_allocation.set(n, thrown); }
void exhaustMemory(bool on) { t_exhausted = on; }
bool allocationFailed() { return t_allocation.failed; }
void failCall(Call call, long n, int error) { t_calls[call].set(n, error); }
bool callFailed(Call call) { return t_calls[call].failed; }
unsigned long seen(Call call) { return t_calls[call].seen; }
void reset() {
    t_allocation = Plan();
    for (Plan& plan : t_calls) plan = Plan();
}

}  // namespace fault

void* operator new(std::size_t n) { return allocateOrThrow(n); }
void* operator new[](std::size_t n) { return allocateOrThrow(n); }
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return allocate(n); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { return allocate(n); }
void* operator new(std::size_t n, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    const auto multiple = static_cast<std::size_t>(alignment);
    return t_exhausted || t_allocation.due()
               ? nullptr
               : std::aligned_alloc(multiple, (n + multiple - 1) / multiple * multiple);
}
void operator delete(void* p, std::align_val_t) noexcept { std::free(p); }
void operator delete(void* p, std::size_t, std::align_val_t) noexcept { std::free(p); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

// HOOK replaces a function that returns an error number. HOOK_ERRNO replaces a function that
// returns -1 and sets errno.
#define HOOK(call, name, parameters, arguments)              \
    int name parameters {                                    \
        if (t_calls[call].due()) return t_calls[call].error; \
        static std::atomic<int(*) parameters> next{nullptr}; \
        return real(next, #name) arguments;                  \
    }
#define HOOK_ERRNO(call, result, name, parameters, arguments)   \
    result name parameters {                                    \
        if (t_calls[call].due()) {                              \
            errno = t_calls[call].error;                        \
            return -1;                                          \
        }                                                       \
        static std::atomic<result(*) parameters> next{nullptr}; \
        return real(next, #name) arguments;                     \
    }

// With hidden visibility, the hooks would not replace the functions in shared libraries.
#pragma GCC visibility push(default)
extern "C" {

HOOK_ERRNO(fault::kSemInit, int, sem_init, (sem_t * s, int shared, unsigned count) noexcept,
           (s, shared, count))
HOOK_ERRNO(fault::kClockRead, int, gettimeofday, (timeval * now, void* zone) noexcept, (now, zone))
HOOK_ERRNO(fault::kFsync, int, fsync, (int fd), (fd))
HOOK_ERRNO(fault::kRead, ssize_t, read, (int fd, void* buffer, std::size_t size),
           (fd, buffer, size))
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*),
                   void* arg) noexcept {
    if (t_calls[fault::kThreadCreate].due()) return t_calls[fault::kThreadCreate].error;
    static std::atomic<int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)> s_next{
        nullptr};
    const auto create = real(s_next, "pthread_create");
    if (!t_calls[fault::kThreadBegin].due()) return create(thread, attributes, routine, arg);
    auto* const start = new (std::nothrow) Start{routine, arg, t_calls[fault::kThreadBegin].error};
    return start != nullptr ? create(thread, attributes, &failToBegin, start) : ENOMEM;
}
int pthread_setspecific(pthread_key_t key, const void* value) noexcept {
    if (t_beginError != 0) return std::exchange(t_beginError, 0);
    static std::atomic<int (*)(pthread_key_t, const void*)> s_next{nullptr};
    return real(s_next, "pthread_setspecific")(key, value);
}
HOOK(fault::kMutexInit, pthread_mutex_init,
     (pthread_mutex_t * m, const pthread_mutexattr_t* attributes) noexcept, (m, attributes))
HOOK(fault::kCondInit, pthread_cond_init,
     (pthread_cond_t * c, const pthread_condattr_t* attributes) noexcept, (c, attributes))
HOOK(fault::kKeyCreate, pthread_key_create,
     (pthread_key_t * key, void (*destructor)(void*)) noexcept, (key, destructor))
HOOK(fault::kCondTimedWait, pthread_cond_timedwait,
     (pthread_cond_t * c, pthread_mutex_t* m, const timespec* until), (c, m, until))

}  // extern "C"
#pragma GCC visibility pop
