#include <cerrno>

#include "TavThread/TavCondition.h"
#include "TavThread/TavEvent.h"
#include "TavThread/TavMutex.h"
#include "TavThread/TavRWLock.h"
#include "TavThread/TavSemaphore.h"
#include "TavThread/TavStateTrap.h"
#include "TavThread/TavThreadKey.h"
#include "tests/TavThread/TavSupport.hpp"
#include "tests/support/FaultInjection.hpp"

namespace {

void* nothing(void*) { return nullptr; }

/// One creation and destruction; returns the creation's result and checks its out-parameter.
struct Creation {
    const char* name;
    int (*run)();
};

template <class Object, class Create>
int createAndDestroy(Create create, int (*destroy)(Object*)) {
    Object* object = reinterpret_cast<Object*>(&object);
    const int rc = create(&object);
    EXPECT_EQ(rc == TAVTHREAD_OK, object != nullptr);
    if (rc == TAVTHREAD_OK) {
        EXPECT_EQ(TAVTHREAD_OK, destroy(object));
    }
    return rc;
}

const Creation kMutex = {
    "mutex", [] {
        return createAndDestroy<TavMutex>(
            [](TavMutex** out) { return tavXMutexCreate(out, TavMutexAttrRecursive, 0); },
            &tavXMutexDestroy);
    }};
const Creation kSemaphore = {
    "semaphore", [] {
        return createAndDestroy<TavSemaphore>(
            [](TavSemaphore** out) { return tavXSemaphoreCreate(out, 0, 0); },
            &tavXSemaphoreDestroy);
    }};
const Creation kCondition = {"condition", [] {
                                 return createAndDestroy<TavCondition>(
                                     [](TavCondition** out) { return tavXConditionCreate(out, 0); },
                                     &tavXConditionDestroy);
                             }};
const Creation kEvent = {"event", [] {
                             return createAndDestroy<TavEvent>(
                                 [](TavEvent** out) { return tavXEventCreate(out, 0, 0, 0); },
                                 &tavXEventDestroy);
                         }};
const Creation kRWLock = {"rwlock", [] {
                              return createAndDestroy<TavRWLock>(
                                  [](TavRWLock** out) { return tavXRWLockCreate(out, 0); },
                                  &tavXRWLockDestroy);
                          }};
const Creation kKey = {"key", [] {
                           return createAndDestroy<TavThreadKey>(
                               [](TavThreadKey** out) { return tavXThreadKeyCreate(out, nullptr); },
                               &tavXThreadKeyDestroy);
                       }};
const Creation kTrap = {
    "trap", [] {
        return createAndDestroy<TavStateTrap>(
            [](TavStateTrap** out) { return tavXThreadStateTrapCreate(out, 1, 0); },
            &tavXThreadStateTrapDestroy);
    }};
const Creation kThread = {
    "thread", [] {
        return createAndDestroy<TavThread>(
            [](TavThread** out) { return tavXThreadCreate(&nothing, nullptr, out, 0); },
            [](TavThread* thread) {
                EXPECT_EQ(TAVTHREAD_OK, tavXThreadJoin(thread, nullptr));
                return tavXThreadDestroy(thread);
            });
    }};

}  // namespace

TEST(TavFaultTest, CreationsReportAFailedAllocation) {
    Layer layer;
    for (const Creation& creation :
         {kMutex, kSemaphore, kCondition, kEvent, kRWLock, kKey, kTrap, kThread}) {
        const long failures = fault::eachAllocation([&] {
            const int rc = creation.run();
            EXPECT_EQ(fault::allocationFailed() ? TAVTHREAD_NOMEM : TAVTHREAD_OK, rc)
                << creation.name;
        });
        EXPECT_GE(failures, 1) << creation.name;
    }
}

TEST(TavFaultTest, CreationsReportAndUndoAFailedCall) {
    Layer layer;
    const struct {
        Creation creation;
        fault::Call call;
        long n;
        int error, code;
    } table[] = {{kMutex, fault::MutexInit, 0, EAGAIN, TAVTHREAD_AGAIN},
                 {kSemaphore, fault::SemInit, 0, ENOSPC, TAVTHREAD_ERROR},
                 {kCondition, fault::CondInit, 0, ENOMEM, TAVTHREAD_NOMEM},
                 {kEvent, fault::CondInit, 0, ENOMEM, TAVTHREAD_NOMEM},
                 {kEvent, fault::MutexInit, 0, EAGAIN, TAVTHREAD_AGAIN},
                 {kRWLock, fault::MutexInit, 0, EPERM, TAVTHREAD_ERROR},
                 {kRWLock, fault::CondInit, 0, ENOMEM, TAVTHREAD_NOMEM},
                 {kRWLock, fault::CondInit, 1, ENOMEM, TAVTHREAD_NOMEM},
                 {kKey, fault::KeyCreate, 0, EAGAIN, TAVTHREAD_AGAIN},
                 {kThread, fault::SemInit, 0, ENOSPC, TAVTHREAD_ERROR},
                 {kThread, fault::ThreadCreate, 0, EAGAIN, TAVTHREAD_AGAIN},
                 {kThread, fault::ThreadCreate, 0, EINTR, TAVTHREAD_OK},
                 {kSemaphore, fault::SemInit, 0, EINTR, TAVTHREAD_OK}};
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
        EXPECT_EQ(TAVTHREAD_OK, tavXThreadInitialize()) << "the next attempt";
        fault::failAllocation(0);
        EXPECT_EQ(TAVTHREAD_NOMEM,
                  tavXThreadStateCallback(
                      tavXThreadSelf(), 1, [](void*, TavThread*, int) {}, nullptr));
        fault::reset();
    });
}
