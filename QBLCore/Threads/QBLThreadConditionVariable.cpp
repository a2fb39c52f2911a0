#include "QBLCore/Threads/QBLThreadConditionVariable.hpp"

#include "QBLCore/Threads/shared/QBLLayerResult.hpp"
#include "TavThread/TavCondition.h"
#include "TavThread/shared/TavMutexRecord.hpp"

namespace {

const char kCreate[] =
    "QBLThreadConditionVariable::QBLThreadConditionVariable: "
    "TavThread interface or unexpected error";
const char kWait[] = "QBLThreadConditionVariable::wait: TavThread interface or unexpected error";
const char kTimedWait[] =
    "QBLThreadConditionVariable::timedWait: TavThread interface or unexpected error";
const char kSignal[] =
    "QBLThreadConditionVariable::signal: TavThread interface or unexpected error";
const char kBroadcast[] =
    "QBLThreadConditionVariable::broadcast: TavThread interface or unexpected error";

// Returns null for a mutex that is recursive or records its holder. The layer refuses null.
pthread_mutex_t* waitable(TavMutex* mutex) {
    return tavMutexExtras(mutex) == 0 ? tavMutexNative(mutex) : nullptr;
}

}  // namespace

QBLThreadConditionVariable::QBLThreadConditionVariable() : m_pCondition(nullptr) {
    settle(tavXConditionCreate(&m_pCondition, TavConditionAttrEnd), QBL_HERE, kCreate);
}

QBLThreadConditionVariable::~QBLThreadConditionVariable() { tavXConditionDestroy(m_pCondition); }

void QBLThreadConditionVariable::wait(QBLThreadMutex& lock) {
    settle(tavXConditionWait(m_pCondition, waitable(lock.m_pMutex)), QBL_HERE, kWait);
}

void QBLThreadConditionVariable::wait(QBLThreadCriticalSection& lock) {
    settle(tavXConditionWait(m_pCondition, waitable(lock.m_pMutex)), QBL_HERE, kWait);
}

bool QBLThreadConditionVariable::timedWait(QBLThreadMutex& lock, unsigned long ms) {
    return settleTimed(
        tavXConditionTimedWait(m_pCondition, waitable(lock.m_pMutex), layerTimeout(ms)), QBL_HERE,
        kTimedWait);
}

bool QBLThreadConditionVariable::timedWait(QBLThreadCriticalSection& lock, unsigned long ms) {
    return settleTimed(
        tavXConditionTimedWait(m_pCondition, waitable(lock.m_pMutex), layerTimeout(ms)), QBL_HERE,
        kTimedWait);
}

void QBLThreadConditionVariable::signal() {
    settle(tavXConditionSignal(m_pCondition), QBL_HERE, kSignal);
}

void QBLThreadConditionVariable::broadcast() {
    settle(tavXConditionBroadcast(m_pCondition), QBL_HERE, kBroadcast);
}
