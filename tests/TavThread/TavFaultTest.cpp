#include <cerrno>

#include "TavThread/TavCondition.h"
#include "TavThread/TavEvent.h"
#include "TavThread/TavMutex.h"
#include "TavThread/TavRWLock.h"
#include "TavThread/TavSemaphore.h"
#include "TavThread/TavStateTrap.h"
#include "TavThread/TavThreadKey.h"
#include "tests/TavThread/TavSupport.hpp"
#include "tests/faults/Injector.hpp"

namespace {

void* nothing(void*) { return nullptr; }

/// Creates and destroys an object. Returns the result of the creation and checks its out-parameter.
template <class Object, class... Arguments>
int tryOut(int (*create)(Object**, Arguments..., ...), int (*destroy)(Object*),
           Arguments... arguments) {
    Object* object = reinterpret_cast<Object*>(&object);
    const int rc = create(&object, arguments..., 0);
    EXPECT_EQ(rc == TAVTHREAD_OK, object != nullptr);
    if (rc == TAVTHREAD_OK) {
        EXPECT_EQ(TAVTHREAD_OK, destroy(object));
    }
    return rc;
}

int tryOutKey() {
    TavThreadKey* key = nullptr;
    const int rc = tavXThreadKeyCreate(&key, nullptr);
    return rc == TAVTHREAD_OK ? tavXThreadKeyDestroy(key) : rc;
}

int tryOutThread() {
    TavThread* thread = nullptr;
    const int rc = tavXThreadCreate(&nothing, nullptr, &thread, 0);
    EXPECT_EQ(rc == TAVTHREAD_OK, thread != nullptr);
    if (rc != TAVTHREAD_OK) return rc;
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadJoin(thread, nullptr));
    return tavXThreadDestroy(thread);
}

struct Creation {
    const char* name;
    int (*run)();
};
const Creation kMutex = {"mutex", [] { return tryOut(&tavXMutexCreate, &tavXMutexDestroy); }};
const Creation kSemaphore = {
    "semaphore", [] { return tryOut(&tavXSemaphoreCreate, &tavXSemaphoreDestroy, 0U); }};
const Creation kCondition = {"condition",
                             [] { return tryOut(&tavXConditionCreate, &tavXConditionDestroy); }};
const Creation kEvent = {"event", [] { return tryOut(&tavXEventCreate, &tavXEventDestroy, 0, 0); }};
const Creation kRWLock = {"rwlock", [] { return tryOut(&tavXRWLockCreate, &tavXRWLockDestroy); }};
const Creation kTrap = {
    "trap", [] { return tryOut(&tavXThreadStateTrapCreate, &tavXThreadStateTrapDestroy, 1); }};
const Creation kKey = {"key", &tryOutKey};
const Creation kThread = {"thread", &tryOutThread};

}  // namespace

TEST(TavFaultTest, CreateFunctionsReportAFailedAllocation) {
    Layer layer;
    for (const Creation& creation :
         {kMutex, kSemaphore, kCondition, kEvent, kRWLock, kKey, kTrap, kThread}) {
        creation.run();  // the C library keeps the stack of the thread
        const long failures = fault::eachAllocation([&] {
            const int rc = creation.run();
            EXPECT_EQ(fault::allocationFailed() ? TAVTHREAD_NOMEM : TAVTHREAD_OK, rc)
                << creation.name;
        });
        EXPECT_GE(failures, 1) << creation.name;
    }
}

TEST(TavFaultTest, CreateFunctionsReportAndUndoAFailedCall) {
    Layer layer;
    const struct {
        Creation creation;
        fault::Call call;
        long n;
        int error, code;
    } table[] = {{kMutex, fault::kMutexInit, 0, EAGAIN, TAVTHREAD_AGAIN},
                 {kSemaphore, fault::kSemInit, 0, ENOSPC, TAVTHREAD_ERROR},
                 {kCondition, fault::kCondInit, 0, ENOMEM, TAVTHREAD_NOMEM},
                 {kEvent, fault::kCondInit, 0, ENOMEM, TAVTHREAD_NOMEM},
                 {kEvent, fault::kMutexInit, 0, EAGAIN, TAVTHREAD_AGAIN},
                 {kRWLock, fault::kMutexInit, 0, EPERM, TAVTHREAD_ERROR},
                 {kRWLock, fault::kCondInit, 0, ENOMEM, TAVTHREAD_NOMEM},
                 {kRWLock, fault::kCondInit, 1, ENOMEM, TAVTHREAD_NOMEM},
                 {kKey, fault::kKeyCreate, 0, EAGAIN, TAVTHREAD_AGAIN},
                 {kThread, fault::kSemInit, 0, ENOSPC, TAVTHREAD_ERROR},
                 {kThread, fault::kThreadCreate, 0, EAGAIN, TAVTHREAD_AGAIN},
                 {kThread, fault::kThreadCreate, 0, EINTR, TAVTHREAD_OK},
                 {kSemaphore, fault::kSemInit, 0, EINTR, TAVTHREAD_OK}};
    for (const auto& row : table) {
        fault::failCall(row.call, row.n, row.error);
        EXPECT_EQ(row.code, row.creation.run()) << row.creation.name << " call " << row.call;
        EXPECT_TRUE(fault::callFailed(row.call)) << row.creation.name << " call " << row.call;
        fault::reset();
    }
}

TEST(TavFaultTest, AdoptionAndCallbacksReportAFailedAllocation) {
    Layer layer;
    Workers other(1, [] {
        fault::failAllocation(0);
        EXPECT_EQ(nullptr, tavXThreadSelf());
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadInitialize()) << "the next attempt succeeds";
        fault::failAllocation(0);
        EXPECT_EQ(TAVTHREAD_NOMEM,
                  tavXThreadStateCallback(
                      tavXThreadSelf(), 1, [](void*, TavThread*, int) {}, nullptr));
        fault::reset();
    });
}
