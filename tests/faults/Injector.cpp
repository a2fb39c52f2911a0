#include "tests/faults/Injector.hpp"

#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

// A sanitizer's runtime exports its allocator under the first names; the C library exports its own
// allocator under the second names.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): their names
extern "C" {
[[gnu::weak]] void* __interceptor_malloc(std::size_t size);
[[gnu::weak]] void* __interceptor_calloc(std::size_t count, std::size_t size);
[[gnu::weak]] void* __interceptor_realloc(void* block, std::size_t size);
[[gnu::weak]] void* __interceptor_memalign(std::size_t alignment, std::size_t size);
[[gnu::weak]] void __interceptor_free(void* block);
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

// The C library loses a block if memory runs out while it loads a library.
[[gnu::visibility("default")]] const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:_dl_map_object_deps"; }
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

using fault::Mode;

namespace {

thread_local long t_left = -1;
thread_local Mode t_mode = Mode::kOnce;
thread_local bool t_failed = false;
thread_local int t_calm = 0;
thread_local std::size_t t_most = SIZE_MAX;
std::atomic<long> g_live{0};

bool isDue() {
    if (t_left < 0 || t_calm > 0) return false;
    if (t_left > 0) {
        --t_left;
        return false;
    }
    if (t_mode == Mode::kOnce) t_left = -1;
    errno = ENOMEM;
    return t_failed = true;
}

void* counted(void* block) {
    if (block != nullptr) g_live.fetch_add(1, std::memory_order_relaxed);
    return block;
}

/// @return null without a new-handler; throws what the new-handler throws
void* allocate(std::size_t size) {
    for (;;) {
        void* const block = std::malloc(size != 0 ? size : 1);
        const std::new_handler handler = block == nullptr ? std::get_new_handler() : nullptr;
        if (handler == nullptr) return block;
        handler();
    }
}

void* notNull(void* block) {
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void* orNull(std::size_t size) noexcept {
    try {
        return allocate(size);
    } catch (...) {
        return nullptr;
    }
}

void* aligned(std::size_t size, std::align_val_t alignment) noexcept {
    return std::aligned_alloc(static_cast<std::size_t>(alignment), size);
}

}  // namespace

namespace fault {

void failAllocation(long n, Mode mode) {
    t_left = n;
    t_mode = mode;
    t_failed = false;
}
void limitAllocations(std::size_t most) { t_most = most; }
bool allocationFailed() { return t_failed; }
Calm::Calm() {
    ++t_calm;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_iBefore);
}
Calm::~Calm() {
    pthread_setcancelstate(m_iBefore, nullptr);
    --t_calm;
}
bool isCalm() { return t_calm > 0; }
long liveBlocks() { return g_live.load(std::memory_order_relaxed); }

}  // namespace fault

#define REAL(name) (__interceptor_##name != nullptr ? &__interceptor_##name : &__libc_##name)

// With hidden visibility, the functions would not replace those that shared libraries call.
#pragma GCC visibility push(default)
extern "C" {

void* malloc(std::size_t size) noexcept {
    if (size > t_most || isDue()) return nullptr;
    return counted(REAL(malloc)(size));
}
void* calloc(std::size_t count, std::size_t size) noexcept {
    if (isDue()) return nullptr;
    return counted(REAL(calloc)(count, size));
}
void* realloc(void* block, std::size_t size) noexcept {
    if (isDue()) return nullptr;
    void* const moved = REAL(realloc)(block, size);
    return block == nullptr ? counted(moved) : moved;
}
void* memalign(std::size_t alignment, std::size_t size) noexcept {
    if (isDue()) return nullptr;
    return counted(REAL(memalign)(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return memalign(alignment, size);
}
int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    void* const made = memalign(alignment, size);
    if (made == nullptr) return ENOMEM;
    *block = made;
    return 0;
}
void free(void* block) noexcept {
    if (block == nullptr) return;
    g_live.fetch_sub(1, std::memory_order_relaxed);
    REAL(free)(block);
}

}  // extern "C"

void* operator new(std::size_t size) { return notNull(allocate(size)); }
void* operator new[](std::size_t size) { return notNull(allocate(size)); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return orNull(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return orNull(size); }
void* operator new(std::size_t size, std::align_val_t alignment) {
    return notNull(aligned(size, alignment));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return aligned(size, alignment);
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
#pragma GCC visibility pop
