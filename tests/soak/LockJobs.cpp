// Locks, threads, cancellations, pools, the custodian and the factory.
#include <pthread.h>

#include <atomic>
#include <memory>
#include <thread>

#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ObjectFactory/QBLObjectFactory.hpp"
#include "QBLCore/ObjectFactory/QBLObjectFactoryItem.hpp"
#include "QBLCore/QBLCustodian/QBLCustodian.hpp"
#include "QBLCore/ThreadPools/QBLSubmit.hpp"
#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolQueued.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolVariable.hpp"
#include "QBLCore/Threads/QBLCallableThread.hpp"
#include "QBLCore/Threads/QBLThreadAutoResetEvent.hpp"
#include "QBLCore/Threads/QBLThreadConditionVariable.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadManualResetEvent.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "QBLCore/Threads/QBLThreadRWLock.hpp"
#include "QBLCore/Threads/QBLThreadRecursiveCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadRecursiveMutex.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"
#include "tests/soak/Soak.hpp"

namespace soak {
namespace {

constexpr int kPermits = 4;

template <class Lock>
struct Guarded {
    template <class... Arguments>
    explicit Guarded(Arguments... arguments) : lock(arguments...) {}
    Lock lock;
    long a = 0, b = 0;  // equal whenever nobody holds the lock for writing
};

char g_shared[] = "shared";

class Item : public QBLObjectFactoryItem {
public:
    explicit Item(QBLObjectFactory* factory) : QBLObjectFactoryItem(factory) {}
    char* getClassId() override { return g_shared; }
    static QBLObjectFactoryItem* make(QBLObjectFactory* factory) { return new Item(factory); }
    std::atomic<int> users{0};
};

struct Shared {
    Guarded<QBLThreadMutex> mutex{0};
    Guarded<QBLThreadRecursiveMutex> recursiveMutex{0};
    Guarded<QBLThreadCriticalSection> section{0};
    Guarded<QBLThreadRecursiveCriticalSection> recursiveSection{0};
    Guarded<QBLThreadRWLock> rw{};
    QBLThreadSemaphore permits{kPermits};
    std::atomic<int> inside{0};
    QBLThreadMutex waitLock{0};
    QBLThreadConditionVariable changed;
    long turns = 0;  // guarded by waitLock
    QBLThreadAutoResetEvent one{0};
    QBLThreadManualResetEvent all{0};
    QBLObjectFactory factory;
    QBLThreadPoolQueued pool{3, 5};
};
std::unique_ptr<Shared> g_all;

/// Changes the two numbers of a lock, which no other holder may see unequal.
template <class Guarded>
void change(Guarded& guarded, Random& random) {
    switch (random.below(3)) {
        case 0:
            guarded.lock.lock();
            break;
        case 1:
            if (guarded.lock.tryLock() == 0) return;
            break;
        default:
            if (!guarded.lock.boundedLock(random.below(3))) return;
    }
    need(guarded.a == guarded.b, "a lock admits two threads");
    ++guarded.a;
    if (random.below(4) == 0) std::this_thread::yield();
    ++guarded.b;
    guarded.lock.unlock();
}

void locks(Random& random) {
    for (int i = 0; i < 20; ++i) {
        change(g_all->mutex, random);
        change(g_all->recursiveMutex, random);
        change(g_all->section, random);
        change(g_all->recursiveSection, random);
    }
}

void readers(Random& random) {
    for (int i = 0; i < 20; ++i) {
        if (random.below(8) == 0) change(g_all->rw, random);
        if (random.below(2) == 0)
            g_all->rw.lock.readLock();
        else if (!g_all->rw.lock.boundedReadLock(random.below(2)))
            continue;
        need(g_all->rw.a == g_all->rw.b, "a reader sees a writer's work");
        g_all->rw.lock.unlock();
    }
}

void signals(Random& random) {
    if (g_all->permits.boundedWait(random.below(3))) {
        need(++g_all->inside <= kPermits, "a semaphore admits too many");
        --g_all->inside;
        g_all->permits.post();
    }
    g_all->waitLock.lock();
    if (random.below(2) == 0) {
        ++g_all->turns;
        random.below(2) == 0 ? g_all->changed.signal() : g_all->changed.broadcast();
    } else {
        const long before = g_all->turns;
        const bool signalled = g_all->changed.timedWait(g_all->waitLock, 1UL + random.below(2));
        need(g_all->turns >= before, "the lock of a condition does not exclude");
        static_cast<void>(signalled);
    }
    g_all->waitLock.unlock();
    g_all->one.signal();
    static_cast<void>(g_all->one.timedWait(random.below(2)));
    g_all->all.signal();
    static_cast<void>(g_all->all.timedWait(random.below(2)));
}

void threads(Random& random) {
    std::atomic<int> done{0};
    QBLThreadSemaphore never(0);
    QBLCallableThread worker([&done] { ++done; });
    worker.start();
    // A thread that waits in the library until it is cancelled.
    std::thread waiting([&never, which = random.below(3)] {
        QBLThreadManualResetEvent event(0);
        QBLThreadMutex lock(0);
        QBLThreadConditionVariable condition;
        if (which == 0) never.wait();
        if (which == 1) event.wait();
        const QBLThreadGuard guard(lock);
        for (;;) condition.wait(lock);
    });
    pthread_cancel(waiting.native_handle());
    waiting.join();
    worker.join();
    need(done == 1, "a thread has not run");
}

void useAndDestroy(QBLThreadPool& pool, Random& random) {
    std::atomic<int> done{0};
    const int count = static_cast<int>(random.below(20));
    {
        QBLTaskGroup group(pool);
        for (int i = 0; i < count; ++i) group.run([&done] { ++done; });
        group.run([] { QBL_THROW(QBLIllegalStateError(17, "as agreed")); });
        try {
            group.wait();
            need(false, "a group loses an error");
        } catch (const QBLIllegalStateError& error) {
            need(error.getErrorCode() == 17, "a group changes an error");
        }
    }
    need(done == count, "a group loses a task");
    if (random.below(2) == 0) {
        auto future = qblSubmitFor(pool, QBLWaitForever, [] { return 7; });
        need(future.get() == 7, "a future has another result");
    }
    if (random.below(3) == 0) pool.setStopWork(1);
}

void pools(Random& random) {
    switch (random.below(3)) {
        case 0: {
            QBLThreadPoolFixed pool(1 + random.below(3));
            return useAndDestroy(pool, random);
        }
        case 1: {
            QBLThreadPoolQueued pool(1 + random.below(3), random.below(4));
            return useAndDestroy(pool, random);
        }
        default: {
            QBLThreadPoolVariable pool(random.below(2), 1 + random.below(3), random.below(3));
            return useAndDestroy(pool, random);
        }
    }
}

void sharedPool(Random& random) {
    std::atomic<int> done{0};
    const int count = static_cast<int>(random.below(30));
    QBLTaskGroup group(g_all->pool);
    for (int i = 0; i < count; ++i) group.run([&done] { ++done; });
    // Its worker gets another thread.
    static_cast<void>(qblSubmitFor(g_all->pool, 50, [] { pthread_exit(nullptr); }));
    group.wait();
    need(done == count, "the shared pool loses a task");
}

class Chore : public QBLCustodianTask {
public:
    int doIt(int /*terminating*/) override {
        need(registered, "the custodian calls a task that has left");
        return 0;
    }
    std::atomic<bool> registered{true};
};

void custodian(Random& random) {
    Chore chore;
    need(QBLCustodian::registerTask(&chore), "the custodian refuses a task");
    if (random.below(2) == 0) std::this_thread::yield();
    QBLCustodian::deRegisterTask(&chore);
    chore.registered = false;
}

void factory(Random& random) {
    Item* items[4] = {};
    for (Item*& item : items) {
        item = static_cast<Item*>(g_all->factory.createObject(g_shared));
        need(item != nullptr && ++item->users == 1, "an item has two owners");
    }
    if (random.below(8) == 0) g_all->factory.clearLists();
    for (Item* item : items) {
        --item->users;
        item->release();
    }
    char id[] = "own";
    g_all->factory.registerClass(id, &Item::make);
    g_all->factory.unregisterClass(id);
}

/// Starts the library once more, as each part of a program may do.
void startAndStop(Random& /*random*/) {
    need(qblCoreInitialize() == 0, "the library does not start");
    need(qblCoreTerminate() == 0, "the library does not stop");
}

}  // namespace

const std::vector<Job> kLockJobs{
    {"threads", kAlone, threads},     {"pools", kAlone, pools},
    {"custodian", kAlone, custodian}, {"start and stop", kAlone, startAndStop},
    {"locks", kShared, locks},        {"readers", kShared, readers},
    {"signals", kShared, signals},    {"shared pool", kShared, sharedPool},
    {"factory", kShared, factory},
};

void makeSharedLocks() {
    g_all = std::make_unique<Shared>();
    g_all->factory.registerClass(g_shared, &Item::make);
}
void dropSharedLocks() {
    need(g_all->mutex.a == g_all->mutex.b && g_all->rw.a == g_all->rw.b && g_all->inside == 0,
         "a round ends inside a lock");
    g_all->factory.unregisterClass(g_shared);
    g_all.reset();
}

}  // namespace soak
