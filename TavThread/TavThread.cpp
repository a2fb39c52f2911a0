#include "TavThread/TavThread.h"

#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/internal/TavTraceLine.hpp"
#include "TavThread/internal/TavTransition.hpp"
#include "TavThread/shared/TavContain.hpp"

namespace {

constexpr TavAttrTag kTags[] = {TAV_BASIC_ATTR_TAGS,
                                {"TraceObjInheritable", " INHERITABLE", TavAttrValue::kNone},
                                {"CancelFlag", " CANCEL FLAG", TavAttrValue::kCancelFlag},
                                {"CancelFlagInheritable", " INHERITABLE", TavAttrValue::kNone},
                                {"Suspended", " SUSPENDED", TavAttrValue::kNone},
                                {"Detached", " DETACHED", TavAttrValue::kNone},
                                {"StackSize", " STACK SIZE", TavAttrValue::kStackSize}};
constexpr TavAttrKind kKind = {"TavThreadAttr", kTags, 10};
constexpr unsigned kLeastStack = 16384;

/// Ends the thread's use of its record, even if a callback of its last state unwinds the thread.
struct Parting {
    TavThread& self;
    ~Parting() {
        tavThreadAttach(nullptr);
        {
            TavHold hold(self.transition);
            self.finished = true;
        }
        tavThreadRelease(&self);
    }
};

void leave(TavThread& self, void* value, bool threw) {
    Parting parting{self};
    self.exitValue.store(value, std::memory_order_release);
    TavTransition change(self);
    // If the thread was ended while it slept, another thread may still run the callbacks of
    // Running.
    change.awaitCallbacks();
    if (threw)
        change.to(TavThreadStateException);
    else if (change.state() != TavThreadStateException)
        change.to(TavThreadStateInitial);
    self.unmark(kTavThreadSuspendPending);
    change.finish();
}

void* runRoutine(TavThread& self) {
    if (tavThreadAttach(&self) != 0) {
        TavTransition change(self);
        change.to(TavThreadStateException);
        change.finish();
        return nullptr;
    }
    return tavThreadCheckpoint(self) == TavThreadStateRunning ? self.routine(self.arg) : nullptr;
}

extern "C" TAV_CATCHES_UNWINDING void* tavThreadStart(void* record) {
    TavThread& self = *static_cast<TavThread*>(record);
    self.handle.store(pthread_self(), std::memory_order_relaxed);
    void* value = nullptr;
    bool threw = false;
    try {
        value = runRoutine(self);
    } catch (abi::__forced_unwind&) {  // pthread_exit or pthread_cancel
        leave(self, nullptr, false);
        throw;
    } catch (...) {
        threw = true;
    }
    leave(self, value, threw);
    pthread_exit(value);
}

void inherit(TavThread& thread, const TavAttributes& attrs) {
    const TavThread* creator = tavThreadPeek();
    const bool traceGiven =
        attrs.has(TavThreadAttrTraceObj) || attrs.has(TavThreadAttrTraceObjInheritable);
    void* traceObj = attrs.traceObj;
    bool passTrace = attrs.has(TavThreadAttrTraceObjInheritable);
    int* cancelFlag = attrs.cancelFlag;
    bool passCancel = attrs.has(TavThreadAttrCancelFlagInheritable);
    if (creator != nullptr && !traceGiven && creator->has(kTavThreadTraceInheritable)) {
        traceObj = creator->traceObj.load(std::memory_order_acquire);
        passTrace = true;
    }
    if (creator != nullptr && !attrs.has(TavThreadAttrCancelFlag) &&
        creator->has(kTavThreadCancelInheritable)) {
        cancelFlag = creator->cancelFlag.load(std::memory_order_acquire);
        passCancel = true;
    }
    thread.traceObj.store(traceObj, std::memory_order_relaxed);
    thread.cancelFlag.store(cancelFlag, std::memory_order_relaxed);
    if (passTrace) thread.mark(kTavThreadTraceInheritable);
    if (passCancel) thread.mark(kTavThreadCancelInheritable);
}

int setStackSize(pthread_attr_t* attributes, unsigned request) {
    if (request == 0) return 0;
    if (request < kLeastStack) request = kLeastStack;
    size_t usual = 0;
    const int err = pthread_attr_getstacksize(attributes, &usual);
    return err != 0 || usual > request ? err : pthread_attr_setstacksize(attributes, request);
}

int startSystemThread(TavThread& thread, const TavAttributes& attrs) {
    int err = tavRetry([&] { return pthread_attr_init(&thread.attributes); });
    if (err != 0) return err;
    thread.attributesMade = true;
    if (attrs.has(TavThreadAttrDetached))
        err = pthread_attr_setdetachstate(&thread.attributes, PTHREAD_CREATE_DETACHED);
    if (err == 0) err = setStackSize(&thread.attributes, attrs.stackSize);
    if (err != 0) return err;
    pthread_t handle{};
    err = tavRetry(
        [&] { return pthread_create(&handle, &thread.attributes, &tavThreadStart, &thread); });
    if (err == 0) thread.handle.store(handle, std::memory_order_relaxed);
    return err;
}

void trace(TavThread** out, const TavThread& thread, const TavAttributes& attrs, va_list list) {
    void* const traceObj = thread.traceObj.load(std::memory_order_relaxed);
    const int number = static_cast<int>(thread.number);
    tavThreadTraceOutput(traceObj, TavTraceThread,
                         "%stavThreadCreate( routine:%x, arg:%x, threadP:%x=%x(%d)%s )", "[S]",
                         tavTraceHex(reinterpret_cast<const void*>(thread.routine)),
                         tavTraceHex(thread.arg), tavTraceHex(out), tavTraceHex(&thread), number,
                         TavAttributeText(kKind, TavAttributeText::kCall, list).text());
    if (attrs.syntaxTraced())
        tavThreadTraceOutput(traceObj, TavTraceSyntax, "CREATE THREAD %d%s;", number,
                             TavAttributeText(kKind, TavAttributeText::kSyntax, list).text());
}

int create(void* (*routine)(void*), void* arg, TavThread** out, va_list list, va_list again) {
    if (!tavThreadInitialized()) return TAVTHREAD_NOTINIT;
    TavAttributes attrs;
    int rc = tavReadAttributes(kKind, list, attrs);
    if (rc != TAVTHREAD_OK) return rc;
    const bool detached = attrs.has(TavThreadAttrDetached);
    if (routine == nullptr || (out == nullptr && !detached)) return TAVTHREAD_INVALID;
    TavThread* thread = tavThreadNewRecord(rc);
    if (thread == nullptr) return rc;
    thread->routine = routine;
    thread->arg = arg;
    if (detached) thread->joinable.store(TavJoinable::kDetached, std::memory_order_relaxed);
    inherit(*thread, attrs);
    thread->reason.store(TavThreadExitAlive, std::memory_order_relaxed);
    thread->state.store(TavThreadStateRunning, std::memory_order_relaxed);
    if (attrs.has(TavThreadAttrSuspended)) tavXThreadSuspend(thread);

    // The owners are the thread, this call and, if out is not null, the handle. This call still
    // uses the record when the other owners may already have released it.
    thread->owners.store(out != nullptr ? 3 : 2, std::memory_order_relaxed);
    // Stores the handle before the thread starts. The store is atomic, because any thread may read
    // the handle.
    if (out != nullptr) __atomic_store_n(out, thread, __ATOMIC_RELEASE);
    const int err = startSystemThread(*thread, attrs);
    if (err != 0) {
        if (out != nullptr) __atomic_store_n(out, nullptr, __ATOMIC_RELEASE);
        thread->owners.store(1, std::memory_order_relaxed);
    } else if (tavTraceReplaced()) {
        trace(out, *thread, attrs, again);
    }
    tavThreadRelease(thread);
    return tavThread_MapError(err);
}

}  // namespace

extern "C" {

int tavXThreadCreate(void* (*routine)(void*), void* arg, TavThread** out, ...) {
    va_list list, again;
    va_start(list, out);
    va_copy(again, list);
    if (out != nullptr) __atomic_store_n(out, nullptr, __ATOMIC_RELEASE);
    const int rc = create(routine, arg, out, list, again);
    va_end(again);
    va_end(list);
    return rc;
}

int tavXThreadDestroy(TavThread* thread) {
    if (thread == nullptr) return TAVTHREAD_INVALID;
    if (thread->has(kTavThreadAdopted))
        return thread == tavThreadPeek() ? tavXThreadTerminate() : TAVTHREAD_ERROR;
    int rc = TAVTHREAD_OK;
    TavJoinable joinable = TavJoinable::kYes;
    if (thread->joinable.compare_exchange_strong(joinable, TavJoinable::kDetached))
        rc = tavThread_MapError(pthread_detach(thread->handle.load(std::memory_order_relaxed)));
    tavThreadRelease(thread);
    return rc;
}

int tavXThreadJoin(TavThread* thread, void** value) {
    if (thread == nullptr) thread = tavThreadSelf();
    if (thread == nullptr) return TAVTHREAD_ERROR;
    const pthread_t handle = thread->handle.load(std::memory_order_relaxed);
    if (thread->has(kTavThreadAdopted) || thread == tavThreadPeek()) return TAVTHREAD_DEADLOCK;
    TavJoinable joinable = TavJoinable::kYes;
    if (!thread->joinable.compare_exchange_strong(joinable, TavJoinable::kJoined))
        return TAVTHREAD_ERROR;
    // If the join fails or the caller is cancelled, the thread can still be joined.
    struct Claim {
        TavThread* thread;
        ~Claim() {
            if (thread != nullptr) thread->joinable.store(TavJoinable::kYes);
        }
    } claim{thread};
    void* result = nullptr;
    const int err = tavRetry([&] { return pthread_join(handle, &result); });
    if (err != 0) return tavThread_MapError(err);
    claim.thread = nullptr;
    // If the routine called pthread_exit, this result differs from the value that the thread
    // stored.
    thread->exitValue.store(result, std::memory_order_release);
    if (value != nullptr) *value = result;
    return TAVTHREAD_OK;
}

}  // extern "C"
