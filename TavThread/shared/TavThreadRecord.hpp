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

/// A callback for a state of a thread, in a list. The lock of the traps guards all fields,
/// including the links. Callbacks run without the lock. A thread that runs a callback counts itself
/// in `visitors`. A disarmed node leaves its list when it has no visitors.
struct TavStateNode {
    TavStateRoutine routine;  // null after its trap is disarmed
    void* arg;
    TavStateTrap* trap;  // null if the callback has no trap
    int visitors;        // threads that run the routine
    TavStateNode* next;
    TavStateNode* previous;  // null for the first
};

enum TavThreadFlags : unsigned {
    kTavThreadAdopted = 2,
    kTavThreadCancelInheritable = 16,
    kTavThreadTraceInheritable = 32,
    kTavThreadSuspendPending = 64  // changes only under the transition mutex
};

enum class TavJoinable { kYes, kJoined, kDetached, kAdopted };

/// The record of a thread. The running thread and the holder of the handle own the record. The last
/// owner that releases the record frees it.
struct TavThread {
    std::atomic<pthread_t> handle{0};  // creator and thread both store it
    std::uint32_t number = 0;
    // Counts 0 while a suspension is pending or in effect, else 1.
    sem_t resumed;
    std::atomic<int> state{TavThreadStateInitial};
    std::atomic<int> reason{TavThreadExitNormal};
    std::atomic<void*> exitValue{nullptr};
    std::atomic<TavStateNode*> traps[kTavThreadStates] = {};  // change only under the traps' lock
    void* (*routine)(void*) = nullptr;
    void* arg = nullptr;
    std::atomic<void*> traceObj{nullptr};
    std::atomic<int*> cancelFlag{nullptr};  // not owned
    std::atomic<bool> cancelRequested{false};
    TavMutex* heldMutexes = nullptr;  // guarded by the lock of the lists of held mutexes
    pthread_attr_t attributes;
    bool attributesMade = false;
    std::atomic<unsigned> flags{0};

    std::atomic<TavJoinable> joinable{TavJoinable::kYes};
    std::atomic<int> owners{1};
    unsigned generation = 0;  // the run of the layer that made an adopted record
    // Guards each change of the state, of kTavThreadSuspendPending and of `finished`. A thread that
    // uses the handle holds this mutex, so that `finished` does not change during the use. No
    // thread holds this mutex while it waits or runs callbacks.
    pthread_mutex_t transition = PTHREAD_MUTEX_INITIALIZER;
    bool finished = false;    // guarded by transition: the handle may be invalid
    bool asleep = false;      // guarded by transition: suspended, or continued and not awake yet
    bool continuing = false;  // guarded by transition: Running's callbacks have not returned
    // The thread that runs callbacks of a change, and the number of changes whose callbacks it
    // runs; changes may be nested. Guarded by transition.
    pthread_t caller = 0;
    int calls = 0;
    pthread_cond_t called = PTHREAD_COND_INITIALIZER;  // signalled when `calls` becomes 0

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

/// Returns the calling thread's record; null if it has no record or the layer is not started.
TavThread* tavThreadPeek();
/// Like tavThreadPeek(), but adopts the thread if it has no record.
TavThread* tavThreadSelf();
bool tavThreadInitialized();
/// Makes this the record of the calling thread; null removes the record. Returns an error number.
int tavThreadAttach(TavThread* thread);

/// Makes a record with a number, a semaphore and one owner. Returns null and a result code on
/// failure.
TavThread* tavThreadNewRecord(int& rc);
/// Releases the record for one owner. Frees the record if this was the last owner.
void tavThreadRelease(TavThread* thread);
/// Frees the callbacks of a record that is about to be freed, and disarms their traps.
void tavStateTrapsForget(TavThread* thread);
/// Calls the callbacks of a state. The callback added last comes first.
void tavStateTrapsCall(TavThread* thread, int state);

/// Runs a checkpoint of the calling thread. Returns its state.
int tavThreadCheckpoint(TavThread& self);

#endif
