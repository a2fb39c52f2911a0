#include "tests/faults/Injector.hpp"

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
#include <cstring>
#include <ctime>
#include <new>
#include <utility>

// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): its name
extern "C" [[gnu::weak]] void __asan_handle_no_return();

namespace {

using fault::Disaster;

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

struct Plan {
    long left = -1;
    int error = 0;
    bool failed = false;
    long seen = 0;
};
// The last one belongs to the disaster.
thread_local Plan t_plans[fault::kCallCount + 1];
thread_local Disaster t_disaster = Disaster::kNone;
thread_local int t_error = 0;
thread_local long t_cancelAfter = -1;
thread_local bool* t_pCancelled = nullptr;
thread_local fault::Kind t_kind = fault::Kind::kUsual;

bool isSystem(fault::Kind kind) { return t_kind == kind && !fault::isCalm(); }

// By Disaster: the traits of the calls that fail, and the error number.
constexpr std::pair<unsigned, int> kDisasters[] = {
    {kPlain, 0}, {kPlain, 0}, {kTakesDescriptor, EMFILE}, {kTakesSpace, ENOSPC}, {kChanges, EROFS}};

/// Requests the cancellation of this thread if it is due.
void passCancellationPoint() {
    if (t_pCancelled == nullptr) return;
    if (t_cancelAfter-- == 0) {
        *t_pCancelled = true;
        pthread_cancel(pthread_self());
    }
    if (!*t_pCancelled) return;
    // AddressSanitizer does not see that the C library unwinds the stack.
    if (__asan_handle_no_return != nullptr) __asan_handle_no_return();
    pthread_testcancel();
}

/// @return the error number with which the call must fail; 0 if it must be made
int dueError(fault::Call call, unsigned traits) {
    if (fault::isCalm()) return 0;
    if ((traits & kCancels) != 0) passCancellationPoint();
    ++t_plans[call].seen;
    const bool lasts = t_disaster != Disaster::kNone;
    Plan& plan = t_plans[lasts ? fault::kCallCount : call];
    if (plan.left < 0 || (lasts && (traits & kDisasters[int(t_disaster)].first) == 0)) return 0;
    if (plan.left > 0) {
        --plan.left;
        return 0;
    }
    if (!lasts) plan.left = -1;
    plan.failed = true;
    return plan.error;
}

/// @return the number of bytes that a read or write may transfer
std::size_t allowed(std::size_t size, bool isWrite) {
    Plan& plan = t_plans[fault::kCallCount];
    if (fault::isCalm() || size < 2) return size;
    const bool isLast = t_disaster == Disaster::kFull && isWrite && plan.left == 1;
    const bool isShort = t_disaster == Disaster::kShort && plan.left >= 0 && plan.left-- == 0;
    if (!isLast && !isShort) return size;
    plan.failed = true;
    return 1;
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

/// Fails a call.
int refuse(int error) {
    errno = error;
    return -1;
}

struct Start {
    void* (*routine)(void*);
    void* argument;
    int error;
};

/// Begins a thread whose first pthread_setspecific fails.
void* failToBegin(void* given) {
    const Start start = *static_cast<Start*>(given);
    delete static_cast<Start*>(given);
    fault::failCall(fault::kSetSpecific, 0, start.error);
    return start.routine(start.argument);
}

unsigned opening(int flags) {
    const bool makes = (flags & O_CREAT) != 0;
    const bool changes = makes || (flags & O_TRUNC) != 0 || (flags & O_ACCMODE) != O_RDONLY;
    return kCancels | kTakesDescriptor | (makes ? kTakesSpace : kPlain) |
           (changes ? kChanges : kPlain);
}

}  // namespace

namespace fault {

const std::vector<Hook>& hooks() {
    static const std::vector<Hook> kHooks = {
#define CALL(id, name, ...) {name, {__VA_ARGS__}},
#define HOOK(id, traits, result, failure, name, parameters, spec, arguments, ...) \
    {#name, {__VA_ARGS__}},
#define HOOK_NUMBER(id, name, parameters, spec, arguments, ...) {#name, {__VA_ARGS__}},
#include "tests/faults/Calls.inc"
    };
    return kHooks;
}

void failCall(Call call, long n, int error) {
    t_plans[call] = {n, error, false, t_plans[call].seen};
    t_error = error;
}
bool callFailed(Call call) { return t_plans[call].failed; }
long seen(Call call) { return t_plans[call].seen; }
bool reset() {
    const auto failed = [](const Plan& plan) { return plan.failed; };
    const bool any =
        allocationFailed() || std::any_of(std::begin(t_plans), std::end(t_plans), failed);
    std::fill(std::begin(t_plans), std::end(t_plans), Plan());
    t_disaster = Disaster::kNone;
    t_error = 0;
    failAllocation(-1);
    return any;
}
int injectedError() { return t_error != 0 ? t_error : ENOMEM; }
void strike(Disaster disaster, long n) {
    t_disaster = disaster;
    t_error = kDisasters[int(disaster)].second;
    t_plans[kCallCount] = {n, t_error, false, 0};
}
void cancelAfter(long n, bool* cancelled) {
    t_cancelAfter = n;
    t_pCancelled = cancelled;
}
System::System(Kind kind) { t_kind = kind; }
System::~System() { t_kind = Kind::kUsual; }

}  // namespace fault

// HOOK replaces a function that returns -1 or another failure and sets errno. HOOK_NUMBER replaces
// a function that returns an error number.
#define NEXT(result, name, parameters)                        \
    static std::atomic<result(*) parameters> s_next{nullptr}; \
    const auto next = real(s_next, #name)
#define HOOK(id, traits, result, failure, name, parameters, spec, arguments, ...) \
    result name parameters spec {                                                 \
        NEXT(result, name, parameters);                                           \
        const int error = dueError(fault::id, traits);                            \
        return error == 0 ? next arguments : (errno = error, failure);            \
    }
#define HOOK_NUMBER(id, name, parameters, spec, arguments, ...) \
    int name parameters spec {                                  \
        NEXT(int, name, parameters);                            \
        const int error = dueError(fault::id, kPlain);          \
        return error != 0 ? error : next arguments;             \
    }
#define HOOK_OPEN(name)                                                        \
    int name(const char* path, int flags, ...) {                               \
        std::va_list rest;                                                     \
        va_start(rest, flags);                                                 \
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0; \
        va_end(rest);                                                          \
        NEXT(int, name, (const char*, int, ...));                              \
        const int error = dueError(fault::kOpen, opening(flags));              \
        return error != 0 ? refuse(error) : next(path, flags, mode);           \
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
    int error = dueError(fault::kOpenAt, opening(flags));
    if (std::strcmp(path, ".") == 0 && isSystem(fault::Kind::kClosedFolders)) error = EACCES;
    return error != 0 ? refuse(error) : next(at, path, flags, mode);
}
int fcntl(int fd, int command, ...) {
    std::va_list rest;
    va_start(rest, command);
    void* const argument = va_arg(rest, void*);
    va_end(rest);
    NEXT(int, fcntl, (int, int, ...));
    const bool copies = command == F_DUPFD || command == F_DUPFD_CLOEXEC;
    const Trait lock = command == F_SETLKW ? kCancels : kPlain;
    const int error =
        copies ? dueError(fault::kDuplicate, kTakesDescriptor) : dueError(fault::kLock, lock);
    return error != 0 ? refuse(error) : next(fd, command, argument);
}
ssize_t read(int fd, void* buffer, std::size_t size) {
    NEXT(ssize_t, read, (int, void*, std::size_t));
    const int error = dueError(fault::kRead, kCancels);
    return error != 0 ? refuse(error) : next(fd, buffer, allowed(size, false));
}
ssize_t write(int fd, const void* buffer, std::size_t size) {
    NEXT(ssize_t, write, (int, const void*, std::size_t));
    size = allowed(size, true);
    const int error = dueError(fault::kWrite, kCancels | kTakesSpace | kChanges);
    return error != 0 ? refuse(error) : next(fd, buffer, size);
}
// A close that fails has nevertheless released the descriptor.
int close(int fd) {
    NEXT(int, close, (int));
    const int error = dueError(fault::kClose, kCancels);
    const int result = next(fd);
    return error != 0 ? refuse(error) : result;
}
dirent64* readdir64(DIR* stream) {
    NEXT(dirent64*, readdir64, (DIR*));
    if (const int error = dueError(fault::kReadDir, kPlain)) return refuse(error), nullptr;
    dirent64* const entry = next(stream);
    if (entry != nullptr && isSystem(fault::Kind::kUnknownTypes)) entry->d_type = DT_UNKNOWN;
    if (entry != nullptr && isSystem(fault::Kind::kFuture)) entry->d_ino |= kManyInodes;
    return entry;
}
void* dlopen(const char* path, int mode) noexcept {
    NEXT(void*, dlopen, (const char*, int));
    return next(dueError(fault::kDlOpen, kTakesDescriptor) != 0 ? "/no/such/library.so" : path,
                mode);
}
int statx(int at, const char* path, int flags, unsigned mask, struct statx* to) noexcept {
    NEXT(int, statx, (int, const char*, int, unsigned, struct statx*));
    if (const int error = dueError(fault::kStatX, kPlain)) return refuse(error);
    const int result = next(at, path, flags, mask, to);
    if (result != 0 || !isSystem(fault::Kind::kFuture)) return result;
    to->stx_ino |= kManyInodes;
    to->stx_mtime.tv_sec += kManySeconds;
    to->stx_ctime.tv_sec += kManySeconds;
    return result;
}
int renameat2(int a, const char* from, int b, const char* to, unsigned flags) noexcept {
    NEXT(int, renameat2, (int, const char*, int, const char*, unsigned));
    int error = dueError(fault::kRenameAt2, kChanges);
    if (isSystem(fault::Kind::kNoExchange)) error = ENOSYS;
    return error != 0 ? refuse(error) : next(a, from, b, to, flags);
}
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*),
                   void* argument) noexcept {
    NEXT(int, pthread_create, (pthread_t*, const pthread_attr_t*, void* (*)(void*), void*));
    if (const int error = dueError(fault::kThreadCreate, kPlain)) return error;
    const int error = dueError(fault::kThreadBegin, kPlain);
    if (error == 0) return next(thread, attributes, routine, argument);
    const fault::Calm calm;
    auto* const start = new (std::nothrow) Start{routine, argument, error};
    return start != nullptr ? next(thread, attributes, &failToBegin, start) : ENOMEM;
}
// The disk is not waited for: no test turns the power off.
int fsync(int) {
    const int error = dueError(fault::kFsync, kCancels);
    return error != 0 ? refuse(error) : 0;
}
int syncfs(int) noexcept {
    const int error = dueError(fault::kSyncFs, kPlain);
    return error != 0 ? refuse(error) : 0;
}
#define CALL(id, name, ...)
#include "tests/faults/Calls.inc"

}  // extern "C"
#pragma GCC visibility pop
