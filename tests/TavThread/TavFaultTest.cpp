#include <cerrno>

#include "TavThread/TavSemaphore.h"
#include "TavThread/TavStateTrap.h"
#include "tests/TavThread/TavSupport.hpp"
#include "tests/faults/Injector.hpp"

// The rows tavX*Create of tests/faults fail the other calls of the creations.
TEST(TavFaultTest, CreateFunctionsRepeatInterruptedCalls) {
    Layer layer;
    TavSemaphore* semaphore = nullptr;
    fault::failCall(fault::kSemInit, 0, EINTR);
    EXPECT_EQ(TAVTHREAD_OK, tavXSemaphoreCreate(&semaphore, 0, TavSemaphoreAttrEnd));
    EXPECT_EQ(TAVTHREAD_OK, tavXSemaphoreDestroy(semaphore));
    TavThread* thread = nullptr;
    fault::failCall(fault::kThreadCreate, 0, EINTR);
    const auto nothing = [](void*) -> void* { return nullptr; };
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadCreate(nothing, nullptr, &thread, 0));
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadJoin(thread, nullptr));
    EXPECT_EQ(TAVTHREAD_OK, tavXThreadDestroy(thread));
    EXPECT_TRUE(fault::callFailed(fault::kSemInit) && fault::callFailed(fault::kThreadCreate));
    fault::reset();
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
