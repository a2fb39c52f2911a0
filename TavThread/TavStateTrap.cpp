#include "TavThread/TavStateTrap.h"

#include <mutex>
#include <new>

#include "TavThread/internal/TavCreate.hpp"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/shared/TavContain.hpp"
#include "TavThread/shared/TavThreadRecord.hpp"

struct TavStateTrap {
    int state;
    // Guarded by the lock of the traps; null while disarmed.
    TavStateNode* node;
    TavThread* thread;  // its list contains the node
};

namespace {

constexpr TavAttrKind kKind = tavBasicAttrKind("TavStateTrapAttr");

TavThreadCriticalSection g_traps;

bool isState(int state) { return state >= 0 && state < kTavThreadStates; }

const char* stateName(int state) {
    static const char* const kNames[] = {"TavThreadStateInitial", "TavThreadStateRunning",
                                         "TavThreadStateSuspended", "TavThreadStateCanceling",
                                         "TavThreadStateException"};
    return isState(state) ? kNames[state] : "TavThreadStateLast";
}

TavStateNode* newNode(TavStateRoutine routine, void* arg, TavStateTrap* trap) {
    return new (std::nothrow) TavStateNode{routine, arg, trap, 0, nullptr, nullptr};
}

// The callers of push(), drop() and disarm() hold the lock of the traps.

void push(TavThread* thread, int state, TavStateNode* node) {
    std::atomic<TavStateNode*>& head = thread->traps[state];
    node->next = head.load(std::memory_order_relaxed);
    if (node->next != nullptr) node->next->previous = node;
    head.store(node, std::memory_order_release);
}

/// Frees a disarmed node unless it has visitors. In that case the last visitor frees it.
void drop(TavThread* thread, int state, TavStateNode* node) {
    if (node->routine != nullptr || node->visitors != 0) return;
    if (node->next != nullptr) node->next->previous = node->previous;
    if (node->previous != nullptr)
        node->previous->next = node->next;
    else
        thread->traps[state].store(node->next, std::memory_order_relaxed);
    delete node;
}

void disarm(TavStateTrap* trap) {
    TavStateNode* node = trap->node;
    if (node == nullptr) return;
    node->routine = nullptr;
    node->trap = nullptr;
    trap->node = nullptr;
    drop(trap->thread, trap->state, node);
}

/// Iterates over the callbacks of a thread's state. Holds the lock except while a callback runs.
class Walk {
public:
    Walk(TavThread* thread, int state) : m_pThread(thread), m_iState(state), m_lock(g_traps) {
        enter(thread->traps[state].load(std::memory_order_relaxed));
    }
    /// Runs also if a callback ends the calling thread.
    ~Walk() {
        if (m_pNode == nullptr) return;
        if (!m_lock.owns_lock()) m_lock.lock();
        leave();
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    bool atEnd() const { return m_pNode == nullptr; }
    void call() {
        const TavStateRoutine routine = m_pNode->routine;
        void* const arg = m_pNode->arg;
        if (routine == nullptr) return;
        m_lock.unlock();
        tavContain([&] { routine(arg, m_pThread, m_iState); });
        m_lock.lock();
    }
    void next() { enter(leave()); }

private:
    void enter(TavStateNode* node) {
        m_pNode = node;
        if (node != nullptr) ++node->visitors;
    }
    TavStateNode* leave() {
        TavStateNode* const next = m_pNode->next;
        --m_pNode->visitors;
        drop(m_pThread, m_iState, m_pNode);
        return next;
    }

    TavThread* m_pThread;
    int m_iState;
    TavStateNode* m_pNode = nullptr;
    std::unique_lock<TavThreadCriticalSection> m_lock;
};

int create(TavStateTrap** out, int state) {
    if (!isState(state)) return TAVTHREAD_INVALID;
    *out = new (std::nothrow) TavStateTrap{state, nullptr, nullptr};
    return *out != nullptr ? TAVTHREAD_OK : TAVTHREAD_NOMEM;
}

}  // namespace

void tavStateTrapsForget(TavThread* thread) {
    std::lock_guard<TavThreadCriticalSection> hold(g_traps);
    for (std::atomic<TavStateNode*>& head : thread->traps) {
        TavStateNode* node = head.exchange(nullptr, std::memory_order_acquire);
        while (node != nullptr) {
            TavStateNode* next = node->next;
            if (node->trap != nullptr) node->trap->node = nullptr;
            delete node;
            node = next;
        }
    }
}

void tavStateTrapsCall(TavThread* thread, int state) {
    for (Walk walk(thread, state); !walk.atEnd(); walk.next()) walk.call();
}

extern "C" {

int tavXThreadStateCallback(TavThread* thread, int state, TavStateRoutine routine, void* arg) {
    if (thread == nullptr || !isState(state)) return TAVTHREAD_INVALID;
    if (routine == nullptr) return TAVTHREAD_OK;
    TavStateNode* node = newNode(routine, arg, nullptr);
    if (node == nullptr) return TAVTHREAD_NOMEM;
    std::lock_guard<TavThreadCriticalSection> hold(g_traps);
    push(thread, state, node);
    return TAVTHREAD_OK;
}

int tavXThreadStateTrapCreate(TavStateTrap** out, int state, ...) {
    va_list list;
    va_start(list, state);
    const int rc = tavCreate(
        out, kKind, list, [=](const TavAttributes&) { return create(out, state); },
        [=](void* traceObj, const char* attributes) {
            tavThreadTraceOutput(traceObj, TavTraceThread, "%s%s( stateTrapP:%x=%x, state:%s%s )",
                                 TAV_TRACE_CALL("tavThreadStateTrapCreate"), tavTraceHex(out),
                                 tavTraceHex(*out), stateName(state), attributes);
        },
        [=](void* traceObj, const char* attributes) {
            tavThreadTraceOutput(traceObj, TavTraceSyntax,
                                 "CREATE THREAD STATE TRAP %x FOR STATE %s%s;", tavTraceHex(*out),
                                 stateName(state), attributes);
        });
    va_end(list);
    return rc;
}

int tavXThreadStateTrapDestroy(TavStateTrap* trap) {
    if (trap == nullptr) return TAVTHREAD_INVALID;
    {
        std::lock_guard<TavThreadCriticalSection> hold(g_traps);
        disarm(trap);
    }
    delete trap;
    return TAVTHREAD_OK;
}

int tavXThreadStateTrapSet(TavStateTrap* trap, TavThread* thread, TavStateRoutine routine,
                           void* arg) {
    if (trap == nullptr || thread == nullptr) return TAVTHREAD_INVALID;
    TavStateNode* node = nullptr;
    if (routine != nullptr && (node = newNode(routine, arg, trap)) == nullptr)
        return TAVTHREAD_NOMEM;
    std::lock_guard<TavThreadCriticalSection> hold(g_traps);
    disarm(trap);
    if (node == nullptr) return TAVTHREAD_OK;
    trap->node = node;
    trap->thread = thread;
    push(thread, trap->state, node);
    return TAVTHREAD_OK;
}

int tavXThreadStateTrapNext(TavStateTrap* trap, TavStateTrap** out) {
    if (out != nullptr) *out = nullptr;
    if (trap == nullptr || out == nullptr) return TAVTHREAD_INVALID;
    std::lock_guard<TavThreadCriticalSection> hold(g_traps);
    TavStateNode* node = trap->node;
    if (node == nullptr) return TAVTHREAD_OK;
    do node = node->next;
    while (node != nullptr && node->trap == nullptr);
    if (node != nullptr) *out = node->trap;
    return TAVTHREAD_OK;
}

}  // extern "C"
