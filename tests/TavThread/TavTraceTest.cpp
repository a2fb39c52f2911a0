#include "TavThread/TavTrace.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>

#include "TavThread/TavCondition.h"
#include "TavThread/TavEvent.h"
#include "TavThread/TavMutex.h"
#include "TavThread/TavRWLock.h"
#include "TavThread/TavSemaphore.h"
#include "TavThread/TavStateTrap.h"
#include "tests/TavThread/TavSupport.hpp"

namespace {

struct Line {
    void* traceObj;
    unsigned long mask;
    std::string text;
};
std::mutex g_mutex;
std::vector<Line>* g_lines = nullptr;  // receives the lines during a test; guarded by g_mutex

}  // namespace

// Replaces the function of the library.
extern "C" void tavThreadTraceOutput(void* traceObj, unsigned long mask, const char* format, ...) {
    char text[1024];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    std::lock_guard<std::mutex> hold(g_mutex);
    if (g_lines != nullptr) g_lines->push_back({traceObj, mask, text});
}

namespace {

struct TavTraceTest : ::testing::Test {
    TavTraceTest() { g_lines = &lines; }
    ~TavTraceTest() override { g_lines = nullptr; }

    /// Checks the next line. In the pattern, "@" stands for the address of the object, and "&" for
    /// the address of the variable that received the object.
    template <class Object>
    void expect(Object** out, unsigned long mask, const std::string& pattern) {
        std::string wanted;
        for (const char c : pattern)
            wanted += c == '@' ? hex(*out) : c == '&' ? hex(out) : std::string(1, c);
        ASSERT_LT(next, lines.size()) << "no line: " << wanted;
        EXPECT_EQ(wanted, lines[next].text);
        EXPECT_EQ(mask, lines[next].mask);
        EXPECT_EQ(&object, lines[next].traceObj);
        ++next;
    }
    void expectNoMore() { EXPECT_EQ(next, lines.size()) << lines[next].text; }

    static std::string hex(const void* p) {
        char text[16];
        std::snprintf(text, sizeof text, "%x",
                      static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(p)));
        return text;
    }

    std::vector<Line> lines;
    size_t next = 0;
    int object = 0;
    Layer layer;
};

}  // namespace

TEST_F(TavTraceTest, WritesEachCreationAsACallAndAsAStatement) {
    const std::string obj = hex(&object);
    tavXThreadSetTraceObj(&object, 0);

    TavMutex* m = nullptr;
    tavXMutexCreate(&m, TavMutexAttrNoop, TavMutexAttrTraceObj, &object, TavMutexAttrRecursive, 0);
    expect(&m, 4,
           "[S]tavMutexCreate( m:&=@, TavMutexAttrNoop, TavMutexAttrTraceObj " + obj +
               ", TavMutexAttrRecursive )");
    expect(&m, 256, "CREATE MUTEX @ TRACEOBJ " + obj + ", RECURSIVE;");
    tavXMutexLock(m);
    tavXMutexUnlock(m);
    tavXMutexDestroy(m);

    TavSemaphore* s = nullptr;
    tavXSemaphoreCreate(&s, 3, 0);
    expect(&s, 8, "[S]tavSemaphoreCreate( s:&=@, count:3 )");
    expect(&s, 256, "CREATE SEMAPHORE @ WITH COUNT 3;");
    tavXSemaphoreDestroy(s);

    TavCondition* cv = nullptr;
    tavXConditionCreate(&cv, TavConditionAttrDisableSyntax, 0);
    expect(&cv, 16, "[S]tavConditionCreate( cv:&=@, TavConditionAttrDisableSyntax )");
    tavXConditionDestroy(cv);

    TavEvent* e = nullptr;
    tavXEventCreate(&e, 1, 0, 0);
    expect(&e, 32, "[S]tavEventCreate( event:&=@, manualReset:TRUE, setSignaled:FALSE )");
    expect(&e, 256, "CREATE EVENT @ WITH MANUAL RESET;");
    tavXEventDestroy(e);
    tavXEventCreate(&e, 0, 1, 0);
    ++next;
    expect(&e, 256, "CREATE SIGNALED EVENT @;");
    tavXEventDestroy(e);

    TavRWLock* rw = nullptr;
    tavXRWLockCreate(&rw, 0);
    expect(&rw, 64, "[S]tavRWLockCreate( rw:&=@ )");
    expect(&rw, 256, "CREATE RWLOCK @;");
    tavXRWLockDestroy(rw);

    TavStateTrap* trap = nullptr;
    tavXThreadStateTrapCreate(&trap, TavThreadStateSuspended, 0);
    expect(&trap, 1,
           "[S]tavThreadStateTrapCreate( stateTrapP:&=@, state:TavThreadStateSuspended )");
    expect(&trap, 256, "CREATE THREAD STATE TRAP @ FOR STATE TavThreadStateSuspended;");
    tavXThreadStateTrapDestroy(trap);
    expectNoMore();
}

TEST_F(TavTraceTest, NamesTheAttributesOfAThread) {
    Body body = [] { return nullptr; };
    TavThread* thread = nullptr;
    int flag = 0;
    ASSERT_EQ(TAVTHREAD_OK,
              tavXThreadCreate(&runBody, &body, &thread, TavThreadAttrTraceObj, &object,
                               TavThreadAttrTraceObjInheritable, TavThreadAttrCancelFlag, &flag,
                               TavThreadAttrStackSize, 1U, TavThreadAttrEnd));
    const std::string number = std::to_string(tavXThreadId(thread));
    expect(&thread, 1,
           "[S]tavThreadCreate( routine:" + hex(reinterpret_cast<void*>(&runBody)) + ", arg:" +
               hex(&body) + ", threadP:&=@(" + number + "), TavThreadAttrTraceObj " + hex(&object) +
               ", TavThreadAttrTraceObjInheritable, TavThreadAttrCancelFlag, "
               "TavThreadAttrStackSize )");
    expect(&thread, 256,
           "CREATE THREAD " + number + " TRACEOBJ " + hex(&object) +
               ", INHERITABLE, CANCEL FLAG, STACK SIZE;");
    tavXThreadJoin(thread, nullptr);
    tavXThreadDestroy(thread);
    expectNoMore();
}
