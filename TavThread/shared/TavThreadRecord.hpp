#ifndef TAVTHREAD_SHARED_TAVTHREADRECORD_HPP
#define TAVTHREAD_SHARED_TAVTHREADRECORD_HPP

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <cstdint>

#include "TavThread/TavMutex.h"
#include "TavThread/TavStateTrap.h"
#include "TavThread/TavThread.h"

constexpr int kTavThreadStates = 5;

/// One callback of a thread's state, in a list whose links change under the lock of the traps only,
/// which guards all its fields. Whoever calls callbacks does so without the lock, and marks the
/// node that it is at: a disarmed node leaves its list when nobody is at it.
struct TavStateNode {
    TavStateRoutine routine;  // null once its trap is disarmed
    void* arg;
    TavStateTrap* trap;  // null without one
    int visitors;        // threads that run the routine
    TavStateNode* next;
    TavStateNode* previous;  // null for the first
};

enum TavThreadFlags : unsigned {
    kTavThreadAdopted = 2,
    kTavThreadCancelInheritable = 16,
    kTavThreadTraceInheritable = 32,
    kTavThreadSuspendPending = 64  // changes under the transition mutex only
};

enum class TavJoinable { kYes, kJoined, kDetached, kAdopted };

/// The record of a thread. It has several owners, the thread itself while it runs and whoever
/// holds the handle, and is freed by the last one to let go.
struct TavThread {
    std::atomic<pthread_t> handle{0};  // stored by creator and thread, whoever comes first
    std::uint32_t number = 0;
    // Suspension: 1, or 0 while a suspension is pending or in effect.
    sem_t resumed;
    std::atomic<int> state{TavThreadStateInitial};
    std::atomic<int> reason{TavThreadExitNormal};
    std::atomic<void*> exitValue{nullptr};
    std::atomic<TavStateNode*> traps[kTavThreadStates] = {};  // change under the traps' lock only
    void* (*routine)(void*) = nullptr;
    void* arg = nullptr;
    std::atomic<void*> traceObj{nullptr};
    std::atomic<int*> cancelFlag{nullptr};  // points into the user's memory
    std::atomic<bool> cancelRequested{false};
    TavMutex* heldMutexes = nullptr;  // guarded by the lock of the lists of held mutexes
    pthread_attr_t attributes;
    bool attributesMade = false;
    std::atomic<unsigned> flags{0};

    std::atomic<TavJoinable> joinable{TavJoinable::kYes};
    std::atomic<int> owners{1};
    unsigned generation = 0;  // of the layer's run that an adopted record was made in
    // Guards every change of state and of the pending mark, and lets `finished` change only while
    // nobody uses the handle. Never held while waiting or calling out.
    pthread_mutex_t transition = PTHREAD_MUTEX_INITIALIZER;
    bool finished = false;    // guarded by transition: the handle may be dead
    bool asleep = false;      // guarded by transition: suspended, or continued and not awake yet
    bool continuing = false;  // guarded by transition: Running's callbacks have not returned
    // Who calls the callbacks of a change, and of how many within each other; guarded by
    // transition.
    pthread_t caller = 0;
    int calls = 0;
    pthread_cond_t called = PTHREAD_COND_INITIALIZER;  // waited on until there are none

    bool has(TavThreadFlags flag) const {
        return (flags.load(std::memory_order_acquire) & flag) != 0;
    }
    void mark(TavThreadFlags flag) { flags.fetch_or(flag, std::memory_order_acq_rel); }
    void unmark(TavThreadFlags flag) {
        flags.fetch_and(~static_cast<unsigned>(flag), std::memory_order_acq_rel);
    }
    bool cancelled() const {
        if (cancelRequested.load(std::memory_order_acquire)) return true;
        const int* flag = cancelFlag.load(std::memory_order_acquire);
        return flag != nullptr && __atomic_load_n(flag, __ATOMIC_ACQUIRE) != 0;
    }
};

/// The calling thread's record if it has one and the layer runs.
TavThread* tavThreadPeek();
/// The same, but adopts the thread if it has none.
TavThread* tavThreadSelf();
bool tavThreadInitialized();
/// Puts a record, or null, in the calling thread's place; returns an error number.
int tavThreadAttach(TavThread* thread);

/// A new record with its number and semaphore, owned once; null and a result code if that fails.
TavThread* tavThreadNewRecord(int& rc);
/// Lets go of one ownership.
void tavThreadRelease(TavThread* thread);
/// Frees the callbacks of a record about to be freed, and disarms their traps.
void tavStateTrapsForget(TavThread* thread);
/// Calls the callbacks of a state, the latest first.
void tavStateTrapsCall(TavThread* thread, int state);

/// The calling thread's checkpoint; returns its state.
int tavThreadCheckpoint(TavThread& self);

#endif
