#include "tests/faults/Calls.hpp"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/random.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "tests/faults/Injector.hpp"

// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): its name
extern "C" [[gnu::weak]] void __asan_handle_no_return();

namespace {

using faults::Disaster;

constexpr std::uint64_t kManyInodes = std::uint64_t{1} << 40;
constexpr std::int64_t kManySeconds = std::int64_t{1} << 33;

// What a call needs or does. A disaster fails all calls that have one of its bits.
enum Trait : unsigned {
    kPlain = 0,
    kTakesDescriptor = 1,
    kTakesSpace = 2,
    kChanges = 4,
    kCancels = 8
};

enum Id : std::size_t {
#define CALL(id, ...) id,
#define HOOK CALL
#define HOOK_NUMBER CALL
#include "tests/faults/Calls.inc"
#undef CALL
#undef HOOK
#undef HOOK_NUMBER
    kHookCount
};

struct Plan {
    std::size_t hook = kHookCount;
    long left = -1;
    int error = 0;
    bool isDisaster = false;
    Disaster disaster = Disaster::kShort;
    bool failed = false;
    long counts[kHookCount] = {};
    long cancelAfter = -1;
    bool* cancelled = nullptr;
};
thread_local Plan t_plan;
thread_local faults::Kind t_kind = faults::Kind::kUsual;

bool isSystem(faults::Kind kind) { return t_kind == kind && !faults::isCalm(); }

unsigned traitsOf(Disaster disaster) {
    switch (disaster) {
        case Disaster::kDescriptors:
            return kTakesDescriptor;
        case Disaster::kFull:
            return kTakesSpace;
        case Disaster::kReadOnly:
            return kChanges;
        default:
            return kPlain;
    }
}

/// Requests the cancellation of this thread if it is due.
void passCancellationPoint() {
    Plan& plan = t_plan;
    if (plan.cancelled == nullptr) return;
    if (plan.cancelAfter-- == 0) {
        *plan.cancelled = true;
        pthread_cancel(pthread_self());
    }
    if (!*plan.cancelled) return;
    // AddressSanitizer does not see that the C library unwinds the stack.
    if (__asan_handle_no_return != nullptr) __asan_handle_no_return();
    pthread_testcancel();
}

/// @return the error number with which the call must fail; 0 if it must be made
int dueError(Id hook, unsigned traits) {
    if (faults::isCalm()) return 0;
    if ((traits & kCancels) != 0) passCancellationPoint();
    Plan& plan = t_plan;
    ++plan.counts[hook];
    const bool affected =
        plan.isDisaster ? (traits & traitsOf(plan.disaster)) != 0 : plan.hook == hook;
    if (plan.left < 0 || !affected) return 0;
    if (plan.left > 0) {
        --plan.left;
        return 0;
    }
    if (!plan.isDisaster) plan.left = -1;
    plan.failed = true;
    return plan.error;
}

/// @return the number of bytes that a read or write may transfer
std::size_t allowed(std::size_t size, bool isWrite) {
    Plan& plan = t_plan;
    if (faults::isCalm() || !plan.isDisaster || size < 2) return size;
    if (plan.disaster == Disaster::kFull) return isWrite && plan.left == 1 ? 1 : size;
    if (plan.disaster != Disaster::kShort || plan.left < 0 || plan.left-- > 0) return size;
    plan.failed = true;
    return 1;
}

template <class Function>
Function real(std::atomic<Function>& known, const char* name) {
    Function function = known.load(std::memory_order_relaxed);
    if (function == nullptr) {
        function = reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
        known.store(function, std::memory_order_relaxed);
    }
    return function;
}

/// Does the work of a function that does nothing but fail.
int failed(Id hook, unsigned traits) {
    const int error = dueError(hook, traits);
    if (error != 0) errno = error;
    return error != 0 ? -1 : 0;
}

unsigned opening(int flags) {
    const bool makes = (flags & O_CREAT) != 0;
    const bool changes = makes || (flags & O_TRUNC) != 0 || (flags & O_ACCMODE) != O_RDONLY;
    return kCancels | kTakesDescriptor | (makes ? kTakesSpace : kPlain) |
           (changes ? kChanges : kPlain);
}

}  // namespace

namespace faults {

const std::vector<Hook>& hooks() {
    static const std::vector<Hook> kHooks = {
#define CALL(id, name, ...) {name, {__VA_ARGS__}},
#define HOOK(id, traits, result, failure, name, parameters, spec, arguments, ...) \
    {#name, {__VA_ARGS__}},
#define HOOK_NUMBER(id, name, parameters, spec, arguments, ...) {#name, {__VA_ARGS__}},
#include "tests/faults/Calls.inc"
#undef CALL
#undef HOOK
#undef HOOK_NUMBER
    };
    return kHooks;
}

void armCall(std::size_t hook, long n, int error) {
    t_plan.hook = hook;
    t_plan.left = n;
    t_plan.error = error;
    t_plan.isDisaster = t_plan.failed = false;
}
void armDisaster(Disaster disaster, long n) {
    armCall(kHookCount, n, EMFILE);
    t_plan.isDisaster = true;
    t_plan.disaster = disaster;
    if (disaster == Disaster::kFull) t_plan.error = ENOSPC;
    if (disaster == Disaster::kReadOnly) t_plan.error = EROFS;
}
bool disarmCalls() {
    t_plan.left = -1;
    t_plan.isDisaster = false;
    t_plan.error = 0;
    return t_plan.failed;
}
void armCancel(long n, bool* cancelled) {
    t_plan.cancelAfter = n;
    t_plan.cancelled = cancelled;
}
int injectedError() { return t_plan.error != 0 ? t_plan.error : ENOMEM; }
const std::vector<long>& callCounts() {
    thread_local std::vector<long> t_counts;
    t_counts.assign(t_plan.counts, t_plan.counts + kHookCount);
    return t_counts;
}
System::System(Kind kind) { t_kind = kind; }
System::~System() { t_kind = Kind::kUsual; }
void startCounting() { std::fill(t_plan.counts, t_plan.counts + kHookCount, 0); }

}  // namespace faults

// HOOK replaces a function that returns -1 or another failure and sets errno. HOOK_NUMBER replaces
// a function that returns an error number.
#define NEXT(result, name, parameters)                        \
    static std::atomic<result(*) parameters> s_next{nullptr}; \
    const auto next = real(s_next, #name)
#define HOOK(id, traits, result, failure, name, parameters, spec, arguments, ...) \
    result name parameters spec {                                                 \
        NEXT(result, name, parameters);                                           \
        const int error = dueError(id, traits);                                   \
        if (error == 0) return next arguments;                                    \
        errno = error;                                                            \
        return failure;                                                           \
    }
#define HOOK_NUMBER(id, name, parameters, spec, arguments, ...) \
    int name parameters spec {                                  \
        NEXT(int, name, parameters);                            \
        const int error = dueError(id, kPlain);                 \
        return error != 0 ? error : next arguments;             \
    }
#define HOOK_OPEN(name)                                                        \
    int name(const char* path, int flags, ...) {                               \
        std::va_list rest;                                                     \
        va_start(rest, flags);                                                 \
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0; \
        va_end(rest);                                                          \
        NEXT(int, name, (const char*, int, ...));                              \
        const int error = dueError(kOpen, opening(flags));                     \
        if (error == 0) return next(path, flags, mode);                        \
        errno = error;                                                         \
        return -1;                                                             \
    }

// With hidden visibility, the hooks would not replace the functions in shared libraries.
#pragma GCC visibility push(default)
extern "C" {

HOOK_OPEN(open)
HOOK_OPEN(open64)
int openat64(int at, const char* path, int flags, ...) {
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    NEXT(int, openat64, (int, const char*, int, ...));
    int error = dueError(kOpenAt, opening(flags));
    if (std::strcmp(path, ".") == 0 && isSystem(faults::Kind::kClosedFolders)) error = EACCES;
    if (error == 0) return next(at, path, flags, mode);
    errno = error;
    return -1;
}
int fcntl(int fd, int command, ...) {
    std::va_list rest;
    va_start(rest, command);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    NEXT(int, fcntl, (int, int, ...));
    const bool copies = command == F_DUPFD || command == F_DUPFD_CLOEXEC;
    const int error = dueError(copies ? kDuplicate : kLock, copies                ? kTakesDescriptor
                                                            : command == F_SETLKW ? kCancels
                                                                                  : kPlain);
    if (error == 0) return next(fd, command, argument);
    errno = error;
    return -1;
}
ssize_t read(int fd, void* buffer, std::size_t size) {
    NEXT(ssize_t, read, (int, void*, std::size_t));
    const int error = dueError(kRead, kCancels);
    if (error == 0) return next(fd, buffer, allowed(size, false));
    errno = error;
    return -1;
}
ssize_t write(int fd, const void* buffer, std::size_t size) {
    NEXT(ssize_t, write, (int, const void*, std::size_t));
    size = allowed(size, true);
    const int error = dueError(kWrite, kCancels | kTakesSpace | kChanges);
    if (error == 0) return next(fd, buffer, size);
    errno = error;
    return -1;
}
// A close that fails has nevertheless released the descriptor.
int close(int fd) {
    NEXT(int, close, (int));
    const int error = dueError(kClose, kCancels);
    const int result = next(fd);
    if (error == 0) return result;
    errno = error;
    return -1;
}
dirent64* readdir64(DIR* stream) {
    NEXT(dirent64*, readdir64, (DIR*));
    if (const int error = dueError(kReadDir, kPlain)) {
        errno = error;
        return nullptr;
    }
    dirent64* const entry = next(stream);
    if (entry != nullptr && isSystem(faults::Kind::kUnknownTypes)) entry->d_type = DT_UNKNOWN;
    if (entry != nullptr && isSystem(faults::Kind::kFuture)) entry->d_ino |= kManyInodes;
    return entry;
}
void* dlopen(const char* path, int mode) noexcept {
    NEXT(void*, dlopen, (const char*, int));
    return next(dueError(kDlOpen, kTakesDescriptor) != 0 ? "/no/such/library.so" : path, mode);
}
int statx(int at, const char* path, int flags, unsigned mask, struct statx* to) noexcept {
    NEXT(int, statx, (int, const char*, int, unsigned, struct statx*));
    if (const int error = dueError(kStatX, kPlain)) {
        errno = error;
        return -1;
    }
    const int result = next(at, path, flags, mask, to);
    if (result != 0 || !isSystem(faults::Kind::kFuture)) return result;
    to->stx_ino |= kManyInodes;
    to->stx_mtime.tv_sec += kManySeconds;
    to->stx_ctime.tv_sec += kManySeconds;
    return result;
}
int renameat2(int a, const char* from, int b, const char* to, unsigned flags) noexcept {
    NEXT(int, renameat2, (int, const char*, int, const char*, unsigned));
    int error = dueError(kRenameAt2, kChanges);
    if (isSystem(faults::Kind::kNoExchange)) error = ENOSYS;
    if (error == 0) return next(a, from, b, to, flags);
    errno = error;
    return -1;
}
// The disk is not waited for: no test turns the power off.
int fsync(int) { return failed(kFsync, kCancels); }
int syncfs(int) noexcept { return failed(kSyncFs, kPlain); }
#define CALL(id, name, ...)
#include "tests/faults/Calls.inc"

}  // extern "C"
#pragma GCC visibility pop
