#include "TavThread/TavStateTrap.h"

#include <mutex>
#include <new>

#include "TavThread/internal/TavContain.hpp"
#include "TavThread/internal/TavSystem.hpp"
#include "TavThread/internal/TavThreadRecord.hpp"
#include "TavThread/internal/TavTraceLine.hpp"

struct TavStateTrap {
    int state;
    TavStateNode* node;  // guarded by the lock of the traps; null while disarmed
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

void push(TavThread* thread, int state, TavStateNode* node) {
    std::atomic<TavStateNode*>& head = thread->traps[state];
    node->next = head.load(std::memory_order_relaxed);
    while (!head.compare_exchange_weak(node->next, node, std::memory_order_release,
                                       std::memory_order_relaxed)) {
    }
}

TavStateNode* newNode(TavStateRoutine routine, void* arg, TavStateTrap* trap) {
    return new (std::nothrow) TavStateNode{{routine}, arg, nullptr, trap};
}

/// Requires: the lock of the traps is held.
void disarm(TavStateTrap* trap) {
    if (trap->node == nullptr) return;
    trap->node->routine.store(nullptr, std::memory_order_relaxed);
    trap->node->trap = nullptr;
    trap->node = nullptr;
}

int create(TavStateTrap** out, int state) {
    if (out == nullptr || !isState(state)) return TAVTHREAD_INVALID;
    *out = new (std::nothrow) TavStateTrap{state, nullptr};
    return *out != nullptr ? TAVTHREAD_OK : TAVTHREAD_NOMEM;
}

void trace(TavStateTrap** out, const TavAttributes& attrs, va_list list) {
    void* const traceObj = attrs.traceObject();
    const char* const state = stateName((*out)->state);
    tavThreadTraceOutput(traceObj, TavTraceThread, "%s%s( stateTrapP:%x=%x, state:%s%s )",
                         TAV_TRACE_CALL("tavThreadStateTrapCreate"), tavTraceHex(out),
                         tavTraceHex(*out), state,
                         TavAttributeText(kKind, TavAttributeText::Call, list).text());
    if (attrs.syntaxTraced())
        tavThreadTraceOutput(traceObj, TavTraceSyntax,
                             "CREATE THREAD STATE TRAP %x FOR STATE %s%s;", tavTraceHex(*out),
                             state, TavAttributeText(kKind, TavAttributeText::Syntax, list).text());
}

void callRoutine(TavStateNode* node, TavThread* thread, int state) {
    const TavStateRoutine routine = node->routine.load(std::memory_order_acquire);
    if (routine != nullptr) tavContain([&] { routine(node->arg, thread, state); });
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

TavTransition::TavTransition(TavThread& thread) : m_thread(thread) {
    pthread_mutex_lock(&m_thread.transition);
}

TavTransition::~TavTransition() {
    if (m_held) pthread_mutex_unlock(&m_thread.transition);
}

void TavTransition::to(int newState) {
    const int old = state();
    if (newState == old) return;
    int reason = -1;
    if (newState == TavThreadStateRunning && old == TavThreadStateInitial)
        reason = TavThreadExitAlive;
    else if (newState == TavThreadStateInitial &&
             (old == TavThreadStateRunning || old == TavThreadStateSuspended))
        reason = TavThreadExitNormal;
    else if (newState == TavThreadStateCanceling)
        reason = TavThreadExitCanceled;
    else if (newState == TavThreadStateException)
        reason = TavThreadExitException;
    // Whoever sees the state must not see the reason of an earlier one.
    if (reason >= 0) m_thread.reason.store(reason, std::memory_order_release);
    m_thread.state.store(newState, std::memory_order_release);
    m_iEntered = newState;
}

void TavTransition::finish() {
    m_held = false;
    pthread_mutex_unlock(&m_thread.transition);
    if (m_iEntered < 0) return;
    TavStateNode* node = m_thread.traps[m_iEntered].load(std::memory_order_acquire);
    for (; node != nullptr; node = node->next) callRoutine(node, &m_thread, m_iEntered);
}

extern "C" {

int tavXThreadStateCallback(TavThread* thread, int state, TavStateRoutine routine, void* arg) {
    if (thread == nullptr || !isState(state)) return TAVTHREAD_INVALID;
    if (routine == nullptr) return TAVTHREAD_OK;
    TavStateNode* node = newNode(routine, arg, nullptr);
    if (node == nullptr) return TAVTHREAD_NOMEM;
    push(thread, state, node);
    return TAVTHREAD_OK;
}

int tavXThreadStateTrapCreate(TavStateTrap** out, int state, ...) {
    va_list list, again;
    va_start(list, state);
    va_copy(again, list);
    if (out != nullptr) *out = nullptr;
    TavAttributes attrs;
    int rc = tavReadAttributes(kKind, list, attrs);
    if (rc == TAVTHREAD_OK) rc = create(out, state);
    if (rc == TAVTHREAD_OK && tavTraceReplaced()) trace(out, attrs, again);
    va_end(again);
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
