#include <atomic>
#include <cerrno>
#include <memory>

#include "tests/faults/Rows.hpp"
#include "tests/support/Library.hpp"

namespace fault {
namespace {

constexpr unsigned kThread = kOutOfMemory | kThreadResource;

char g_flat;  // its address stands for any pointer

/// Checks the result of a flat function.
void settle(int code) {
    const int error = injectedError();
    const int expected = error == EAGAIN   ? TAVTHREAD_AGAIN
                         : error == ENOMEM ? TAVTHREAD_NOMEM
                                           : TAVTHREAD_ERROR;
    if (code != TAVTHREAD_OK && code != expected) throw Broken{"code " + std::to_string(code)};
    need(code == TAVTHREAD_OK);
}

/// Creates and destroys an object of the flat layer. A failure leaves a null pointer.
template <class Object, class... Arguments>
void addFlat(const char* name, int (*create)(Object**, Arguments..., ...), int (*destroy)(Object*),
             Arguments... arguments) {
    add(name, kRefuses, [=] {
        start();
        auto* object = reinterpret_cast<Object*>(&g_flat);
        const int code = create(&object, arguments..., 0);
        if ((code == TAVTHREAD_OK) != (object != nullptr)) throw Broken{"object without success"};
        settle(code);
        settle(destroy(object));
    });
}

template <class Lock>
void useLock(Lock& lock) {
    lock.lock();
    lock.unlock();
    need(lock.tryLock() != 0);
    lock.unlock();
    need(lock.boundedLock(1));
    lock.unlock();
}

template <class Lock>
void makeLock() {
    start();  // a lock that records its holder needs it
    Lock lock(1);
    useLock(lock);
}

/// Runs tasks at once, or refuses them.
template <bool kRefuse>
struct NoPool : QBLThreadExecuteRunnable {
    int execute(QBLThreadRunnable* task, unsigned long) override {
        if (!kRefuse) task->run();
        return kRefuse ? 0 : 1;
    }
};

[[noreturn]] void throwState() { QBL_THROW(QBLIllegalStateError(5, "a text of its own")); }

/// Runs code that throws the error of throwState(), unless memory runs out.
template <class Code>
void needState(Code code) {
    try {
        code();
    } catch (const QBLIllegalStateError& error) {
        return need(error.getErrorCode() == 5);
    }
    throw Broken{"nothing thrown"};
}

template <class Pool, unsigned... kArguments>
void addPool(const std::string& name) {
    add(name + ".make", kThread, [] {
        start();
        Pool pool(kArguments...);
    });
    const auto make = [] { return std::make_unique<Pool>(kArguments...); };
    add(name + ".group", kThread, [make] {
        start();
        const std::unique_ptr<Pool> pool = calmly(make);
        std::atomic<int> count{0};
        QBLTaskGroup group(*pool);
        for (int i = 0; i < 4; ++i) group.run([&count] { ++count; });
        group.wait();
        return count.load();
    });
    add(name + ".submit", kThread | kBadAlloc, [make] {
        start();
        const std::unique_ptr<Pool> pool = calmly(make);
        return qblSubmit(*pool, [] { return 7; }).get();
    });
}

const bool kPools = [] {
    addPool<QBLThreadPoolFixed, 2>("QBLThreadPoolFixed");
    addPool<QBLThreadPoolQueued, 2, 8, 1>("QBLThreadPoolQueued");
    addPool<QBLThreadPoolVariable, 1, 3, 100>("QBLThreadPoolVariable");
    return true;
}();

std::string print(const QBLByteBuffer& buffer) {
    if (buffer.str()[buffer.pcount()] != '\0') throw Broken{"not terminated"};
    return std::string(buffer.data(), buffer.size());
}

template <class Change>
void edit(const char* name, Change change) {
    const auto run = [change] {
        QBLByteBuffer buffer = calmly([] { return QBLByteBuffer(8, 8) << "before"; });
        const std::string after = changed(buffer, print, change);
        return calmly([&] { return after + print(buffer << 0); });
    };
    add(std::string("QBLByteBuffer.") + name, kOutOfMemory | kOther, run);
}

char g_id[] = "class";

struct Item : QBLObjectFactoryItem {
    using QBLObjectFactoryItem::QBLObjectFactoryItem;
    char* getClassId() override { return g_id; }
    static QBLObjectFactoryItem* make(QBLObjectFactory* factory) { return new Item(factory); }
};

struct CountTask : QBLCustodianTask {
    int doIt(int /*terminating*/) override { return 0; }
};

const bool kFlat = [] {
    addFlat("tavXMutexCreate", &tavXMutexCreate, &tavXMutexDestroy);
    addFlat("tavXSemaphoreCreate", &tavXSemaphoreCreate, &tavXSemaphoreDestroy, 0U);
    addFlat("tavXConditionCreate", &tavXConditionCreate, &tavXConditionDestroy);
    addFlat("tavXEventCreate", &tavXEventCreate, &tavXEventDestroy, 0, 0);
    addFlat("tavXRWLockCreate", &tavXRWLockCreate, &tavXRWLockDestroy);
    addFlat("tavXThreadStateTrapCreate", &tavXThreadStateTrapCreate, &tavXThreadStateTrapDestroy,
            1);
    add("tavXThreadKeyCreate", kRefuses, [] {
        TavThreadKey* key = nullptr;
        settle(tavXThreadKeyCreate(&key, nullptr));
        settle(tavXThreadKeyDestroy(key));
    });
    add("tavXThreadSelf", kRefuses, [] {
        start();
        pthread_once_t once = PTHREAD_ONCE_INIT;
        tavXThreadTerminate();  // the next call makes the record of the thread again
        need(tavXThreadInitialize() == TAVTHREAD_OK && QBLThread::currentThreadId() != 0 &&
             tavXThreadId(nullptr) != 0 && tavXThreadOnce(&once, [] {}) == TAVTHREAD_OK);
    });
    add("tavXThreadCreate", kRefuses, [] {
        start();
        auto* thread = reinterpret_cast<TavThread*>(&g_flat);
        const int code =
            tavXThreadCreate([](void*) -> void* { return nullptr; }, nullptr, &thread, 0);
        if ((code == TAVTHREAD_OK) != (thread != nullptr)) throw Broken{"a thread without success"};
        settle(code);
        const int set = tavXThreadStateCallback(
            thread, TavThreadStateInitial, [](void*, TavThread*, int) {}, nullptr);
        calmly([=] { return tavXThreadJoin(thread, nullptr); });
        settle(tavXThreadDestroy(thread));
        settle(set);
    });
    return true;
}();

const bool kRows = [] {
    add("QBLThreadMutex", kThread, makeLock<QBLThreadMutex>);
    add("QBLThreadRecursiveMutex", kThread, makeLock<QBLThreadRecursiveMutex>);
    add("QBLThreadCriticalSection", kThread, makeLock<QBLThreadCriticalSection>);
    add("QBLThreadRecursiveCriticalSection", kThread, makeLock<QBLThreadRecursiveCriticalSection>);
    add("QBLThreadRWLock", kThread, [] {
        QBLThreadRWLock lock;
        useLock(lock);
        lock.readLock();
        lock.unlock();
        need(lock.boundedReadLock(1));
        const bool excluded = !lock.boundedLock(1);  // the wait for a reader ends
        lock.unlock();
        need(excluded);
    });
    add("QBLThreadEvents", kThread, [] {
        QBLThreadAutoResetEvent one(0);
        QBLThreadManualResetEvent all(0);
        QBLThreadSemaphore semaphore(0);
        one.signal();
        all.signal();
        semaphore.post();
        one.wait();
        all.wait();
        semaphore.wait();
        all.initialize(0);
    });
    add("QBLThreadConditionVariable", kThread, [] {
        QBLThreadCriticalSection lock(0);
        QBLThreadConditionVariable condition;
        const QBLThreadGuard guard(lock);
        condition.signal();
        condition.broadcast();
        static_cast<void>(condition.timedWait(lock, 1UL));
    });
    add("QBLThreadKey", kThread, [] {
        static int s_value = 0;
        QBLThreadKey key;
        key.setValue(&s_value);
        need(key.getValue() == &s_value);
    });
    add("QBLCallableThread", kThread | kBadAlloc, [] {
        start();
        int result = 0;
        QBLCallableThread thread([&result] { result = 7; });
        thread.start();
        thread.join();
        return result;
    });
    add("QBLTaskGroup.error", kThread, [] {
        NoPool<true> pool;
        QBLTaskGroup group(pool);
        needState([&] {
            group.run(&throwState);
            group.wait();
        });
    });
    add("qblSubmit.error", kThread | kBadAlloc, [] {
        NoPool<false> pool;
        const auto held = calmly([] { return std::make_shared<int>(0); });
        needState([&] { qblSubmit(pool, [held] { throwState(); }).get(); });
    });
    add("qblSubmit.refused", kThread | kBadAlloc, [] {
        NoPool<true> pool;
        try {
            qblSubmit(pool, &throwState).get();
        } catch (const QBLThreadResourceError&) {
        }
    });
    add("QBLList", kOutOfMemory | kBadAlloc, [] {
        QBLList<int> list = calmly([] { return QBLList<int>{3, 1, 2}; });
        const auto show = [](const QBLList<int>& l) {
            std::string all;
            for (const int value : l) all += std::to_string(value);
            if (all.size() != l.size()) throw Broken{"size"};
            return all;
        };
        changed(list, show, [](QBLList<int>& l) { l.push_back(4); });
        changed(list, show, [](QBLList<int>& l) { l.push_front(0); });
        changed(list, show, [](QBLList<int>& l) { l.insert(++l.begin(), 9); });
        return changed(list, show, [](QBLList<int>& l) { l.emplace_back(5); });
    });
    edit("append", [](QBLByteBuffer& b) { b << "text that needs more room"; });
    edit("number", [](QBLByteBuffer& b) { b << 1234567890L; });
    edit("printf", [](QBLByteBuffer& b) { b.printf("%s %d", "formatted", 7); });
    edit("unsigned", [](QBLByteBuffer& b) { b << 4000000000U; });
    edit("unsignedLong", [](QBLByteBuffer& b) { b << 4000000000UL; });
    edit("reserve", [](QBLByteBuffer& b) { b.reserve(1000); });
    edit("copy", [](QBLByteBuffer& b) { QBLByteBuffer(b) << "text that needs more room"; });
    edit("assign", [](QBLByteBuffer& b) {
        b = calmly([] { return QBLByteBuffer() << "a text that is longer than the block"; });
    });
    add("QBLVariant", kRefuses, [] {
        // After a failure, a variant has no type.
        const auto check = [](bool done, const QBLVariant& variant) {
            if (!done && !(variant == QBLVariant())) throw Broken{"has a value"};
            need(done);
        };
        QBLVariant text, copy;
        check(text.setValue("a text in a variant", 0), text);
        need(calmly([&] { return copy.setValue("before", 0); }));
        copy = text;
        check(copy == text, copy);
        const QBLVariant other(text);
        check(other == text, other);
        check(text.setValue("the second value", 0), text);
    });
    add("qblBase64", kBadAlloc | kOutOfMemory, [] {
        const std::string coded = qblBase64Encode("a text with some length", 23),
                          url = qblBase64URLEncode("a text with some length", 23);
        const auto text = qblBase64Decode(coded), back = qblBase64URLDecode(url);
        return calmly([&] { return coded + text.value() + url + back.value(); });
    });
    add("QBLSquisher", kRefuses, [] {
        const std::unique_ptr<char[]> token(QBLSquisher::squish("a text to squish, to squish"));
        need(token != nullptr);
        const std::unique_ptr<char[]> text(QBLSquisher::unSquish(token.get()));
        need(text != nullptr);
        return calmly([&] { return std::string(text.get()); });
    });
    add("QBLUtStrTok", kBadAlloc | kOutOfMemory, [] {
        QBLUtStrTok tokens("some tokens that are-longer-than-a-short-text; and more");
        std::string token, all;
        while (tokens.nextToken(token)) calmly([&] { all += token; });
        return all;
    });
    add("QBLMiniLogger", kBadAlloc | kOutOfMemory | kNothing, [] {
        QBLMiniLogger logger;
        logger.init("/dev/null");
        logger.log("caption", "text");
        logger.logTrace("caption", "trace");
    });
    add("QBLObjectFactory", kOutOfMemory | kBadAlloc, kThreadResource, [] {
        QBLObjectFactory factory;
        factory.registerClass(g_id, &Item::make);
        const auto create = [&factory] { return factory.createObject(g_id); };
        try {
            create()->release();
        } catch (...) {
            calmly(create)->release();
            throw;
        }
        factory.releaseObject(create());
        factory.unregisterClass(g_id);
        factory.registerClass(g_id, &Item::make);
    });
    add("QBLCustodian", kRefuses | kThread, [] {
        start();
        CountTask task;
        const bool registered = QBLCustodian::registerTask(&task);
        if (registered) QBLCustodian::deRegisterTask(&task);
        need(registered);
    });
    add("QBLUtSystemInfo", kOutOfMemory | kBadAlloc,
        [] { return QBLUtSystemInfo::getTimeStamp(0).size(); });
    return true;
}();

}  // namespace
}  // namespace fault
