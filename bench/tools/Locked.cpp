// locked: counts the locked instructions, all instructions and the system calls of one operation.
// The program starts itself as a child process and traces it. The child marks the beginning and the
// end of each operation with a breakpoint. The parent executes the instructions between the
// breakpoints in single steps.
//
// A second, idle thread makes the C library use locked instructions, which it omits in processes
// with one thread. Instructions of other threads, such as the workers of a pool, are not counted.
#include <sys/ptrace.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ObjectFactory/QBLObjectFactory.hpp"
#include "QBLCore/ObjectFactory/QBLObjectFactoryItem.hpp"
#include "QBLCore/ThreadPools/QBLSentinelQueue.hpp"
#include "QBLCore/Threads/QBLThreadAutoResetEvent.hpp"
#include "QBLCore/Threads/QBLThreadConditionVariable.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "QBLCore/Threads/QBLThreadRWLock.hpp"
#include "QBLCore/Threads/QBLThreadRecursiveMutex.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"
#include "bench/support/Pools.hpp"
#include "i18n/cpp/i18n_init.h"
#include "i18n/cpp/i18n_pooledstring.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

#ifdef __x86_64__
#define LOCKED_PROGRAM_COUNTER rip
#else
#define LOCKED_PROGRAM_COUNTER eip
#endif

[[gnu::always_inline]] inline void mark() { asm volatile("int3" ::: "memory"); }

/// Calls an operation a few times to fill caches, and then once between two marks for the tracer.
template <class Operation>
void count(const char* name, Operation operation) {
    for (int i = 0; i < 3; ++i) operation();
    std::printf("%-44s", name);
    std::fflush(stdout);
    mark();
    operation();
    mark();
}

struct Item : QBLObjectFactoryItem {
    using QBLObjectFactoryItem::QBLObjectFactoryItem;
    static char s_id[];
    char* getClassId() override { return s_id; }
    static QBLObjectFactoryItem* make(QBLObjectFactory* factory) { return new Item(factory); }
};
char Item::s_id[] = "Item";

void countLocks() {
    QBLThreadMutex mutex;
    count("QBLThreadMutex lock+unlock", [&] { mutex.lock(), mutex.unlock(); });
    QBLThreadRecursiveMutex recursive;
    count("QBLThreadRecursiveMutex lock+unlock", [&] { recursive.lock(), recursive.unlock(); });
    QBLThreadRWLock rw;
    count("QBLThreadRWLock readLock+unlock", [&] { rw.readLock(), rw.unlock(); });
    count("QBLThreadRWLock lock+unlock", [&] { rw.lock(), rw.unlock(); });
    QBLThreadAutoResetEvent event;
    count("QBLThreadAutoResetEvent signal+wait", [&] { event.signal(), event.wait(); });
    QBLThreadSemaphore semaphore(0);
    count("QBLThreadSemaphore post+wait", [&] { semaphore.post(), semaphore.wait(); });
    std::mutex standard;
    count("std::mutex lock+unlock", [&] { standard.lock(), standard.unlock(); });
}

template <class Pool>
void countPool(const char* name) {
    OurPool<Pool> pool;
    auto body = [] {};
    BodyTask<QBLThreadRunnable, decltype(body)> task(body);
    count(name, [&] {
        usleep(20000);  // the workers fall asleep
        pool.submit(task);
    });
}

void countClasses() {
    int item = 0;
    QBLSentinelQueue<int*> queue;
    count("QBLSentinelQueue put+get", [&] {
        int* at = &item;
        if (!queue.put(at, 0) || !queue.get(at, 0)) std::abort();
    });
    QBLObjectFactory factory;
    factory.registerClass(Item::s_id, &Item::make);
    count("QBLObjectFactory create+release", [&] { factory.createObject(Item::s_id)->release(); });
    const I18NPooledString held("a text of the pool");
    count("I18NPooledString of a held text", [] { I18NPooledString again("a text of the pool"); });
    count("I18NPooledString copy", [&] { I18NPooledString copy(held); });
    const I18NString text(
        "Gr\xC3\xBC\xC3\x9F"
        "e");
    count("I18NString copy", [&] { I18NString copy(text); });
    count("I18NString c_str, cached", [&] { text.c_str(); });
    countPool<TwoFixed>("QBLThreadPoolFixed execute, worker asleep");
    countPool<TwoQueued>("QBLThreadPoolQueued execute, worker asleep");
    countPool<TwoVariable>("QBLThreadPoolVariable execute, worker asleep");
}

int runChild() {
    std::mutex mutex;
    std::condition_variable ended;
    bool end = false;
    std::thread idle([&] {
        std::unique_lock<std::mutex> lock(mutex);
        ended.wait(lock, [&] { return end; });
    });
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    if (qblCoreInitialize() != 0) return 1;
    I18NInitialize();
    countLocks();
    countClasses();
    I18NTerminate();
    qblCoreTerminate();
    {
        const std::lock_guard<std::mutex> lock(mutex);
        end = true;
    }
    ended.notify_one();
    idle.join();
    return 0;
}

struct Instruction {
    bool isLocked, isSystemCall, isBreakpoint;
};

/// Decodes the parts of the instruction at the child's program counter that the counts need.
Instruction decode(pid_t child) {
    user_regs_struct registers = {};
    ptrace(PTRACE_GETREGS, child, nullptr, &registers);
    unsigned char bytes[16];
    for (unsigned i = 0; i < sizeof bytes; i += sizeof(long)) {
        const long word =
            ptrace(PTRACE_PEEKTEXT, child, registers.LOCKED_PROGRAM_COUNTER + i, nullptr);
        __builtin_memcpy(bytes + i, &word, sizeof word);
    }
    const unsigned char* at = bytes;
    bool hasLock = false;
    const std::string prefixes("\x66\x67\xF2\xF3\x2E\x36\x3E\x26\x64\x65\xF0");
    for (; at < bytes + 8 && prefixes.find(static_cast<char>(*at)) != std::string::npos; ++at)
        hasLock |= *at == 0xF0;
    if (sizeof(void*) == 8 && (*at & 0xF0) == 0x40) ++at;
    // An exchange with memory is locked even without the prefix.
    const bool isExchange = (*at == 0x86 || *at == 0x87) && at[1] < 0xC0;
    const bool isCall =
        (*at == 0x0F && (at[1] == 0x05 || at[1] == 0x34)) || (*at == 0xCD && at[1] == 0x80);
    return {hasLock || isExchange, isCall, *at == 0xCC};
}

/// Steps from one breakpoint to the next, and prints the counts.
bool follow(pid_t child) {
    unsigned locked = 0, calls = 0, all = 0;
    for (int status = 0;; ++all) {
        const Instruction next = decode(child);
        if (next.isBreakpoint) break;
        locked += next.isLocked;
        calls += next.isSystemCall;
        if (ptrace(PTRACE_SINGLESTEP, child, nullptr, nullptr) != 0 ||
            waitpid(child, &status, 0) != child || !WIFSTOPPED(status))
            return false;
    }
    std::printf("%6u %6u %6u\n", locked, calls, all);
    std::fflush(stdout);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 1) return runChild();
    std::printf("%-44s%6s %6s %6s\n", "operation", "locked", "calls", "instr.");
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        execl("/proc/self/exe", argv[0], "child", nullptr);
        _exit(1);
    }
    for (;;) {
        int status = 0;
        if (waitpid(child, &status, 0) != child) return 1;
        if (WIFEXITED(status)) return WEXITSTATUS(status);
        if (!WIFSTOPPED(status)) return 1;
        // The child stops at the first breakpoint of an operation. follow() ends before the child
        // executes the second breakpoint, at which the child then stops again.
        static bool s_atEnd = false;
        if (WSTOPSIG(status) == SIGTRAP && !s_atEnd && !follow(child)) return 1;
        if (WSTOPSIG(status) == SIGTRAP) s_atEnd = !s_atEnd;
        const int signal = WSTOPSIG(status) == SIGTRAP ? 0 : WSTOPSIG(status);
        ptrace(PTRACE_CONT, child, nullptr, signal);
    }
}
