// This program is built with ThreadSanitizer, but uses the library built without it. Threads pass
// plain data to each other through the library's locks, events and pools. If ThreadSanitizer does
// not see the synchronization, it reports a race and the program fails.
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLTaskGroup.hpp"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/Threads/QBLThreadAutoResetEvent.hpp"
#include "QBLCore/Threads/QBLThreadManualResetEvent.hpp"
#include "QBLCore/Threads/QBLThreadRWLock.hpp"
#include "QBLCore/Threads/QBLThreadRecursiveMutex.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"
#include "tests/support/Workers.hpp"

namespace {

constexpr int kRounds = 2000;

/// Two threads increment a number in turns.
template <class Signal, class Give, class Take>
void takeTurns(Give give, Take take) {
    Signal signals[2];
    int number = 0;
    give(signals[0]);
    std::atomic<int> next{0};
    Workers(2, [&] {
        const int self = next++;
        for (int i = 0; i < kRounds; ++i) {
            take(signals[self]);
            ++number;
            give(signals[1 - self]);
        }
    });
}

template <class Lock>
void count(Lock& lock, bool readers) {
    int number = 0;
    std::atomic<int> next{0}, total{0};
    Workers(4, [&] {
        const int self = next++;
        for (int i = 0; i < kRounds; ++i) {
            if (readers && self != 0) {
                lock.readLock();
                total += number;  // the compiler must not drop the read
            } else {
                while (!lock.boundedLock(1000)) continue;
                ++number;
                // Makes the others sleep.
                if (i % 500 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
            lock.unlock();
        }
    });
}

/// Gives the recursive mutex the interface of a read-write lock.
struct Recursive : QBLThreadRecursiveMutex {
    void readLock() { lock(); }
};

}  // namespace

int main() {
    qblCoreInitialize();
    QBLThreadRWLock lock;
    Recursive recursive;
    for (const bool readers : {false, true}) {
        count(lock, readers);
        count(recursive, readers);
    }
    takeTurns<QBLThreadAutoResetEvent>([](auto& event) { event.signal(); },
                                       [](auto& event) { event.wait(); });
    takeTurns<QBLThreadManualResetEvent>([](auto& event) { event.signal(); },
                                         [](auto& event) {
                                             event.wait();
                                             event.reset();
                                         });
    takeTurns<QBLThreadSemaphore>([](auto& semaphore) { semaphore.post(); },
                                  [](auto& semaphore) {
                                      while (!semaphore.boundedWait(10000)) continue;
                                  });
    QBLThreadPoolFixed pool(2);
    QBLTaskGroup group(pool);
    int results[kRounds] = {}, sum = 0;
    for (int& result : results) group.run([&result] { result = 1; });
    group.wait();
    for (const int result : results) sum += result;
    return sum == kRounds ? qblCoreTerminate() : 1;
}
