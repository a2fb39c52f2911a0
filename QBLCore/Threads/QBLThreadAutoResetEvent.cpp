#include "QBLCore/Threads/QBLThreadAutoResetEvent.hpp"

#include "QBLCore/Threads/shared/QBLLayerResult.hpp"
#include "TavThread/TavEvent.h"
#include "TavThread/shared/TavEventRecord.hpp"

namespace {

const char kCreate[] =
    "QBLThreadAutoResetEvent::QBLThreadAutoResetEvent: TavThread interface or unexpected error";
const char kExhausted[] = "QBLThreadAutoResetEvent: out of events";
const char kWait[] = "QBLThreadAutoResetEvent::wait: TavThread interface or unexpected error";
const char kTimedWait[] =
    "QBLThreadAutoResetEvent::timedWait: TavThread interface or unexpected error";
const char kSignal[] = "QBLThreadAutoResetEvent::signal: TavThread interface or unexpected error";

}  // namespace

QBLThreadAutoResetEvent::QBLThreadAutoResetEvent(int signaled) : m_pEvent(nullptr) {
    const int result = tavXEventCreate(&m_pEvent, 0, signaled, TavEventAttrEnd);
    const bool exhausted = result == TAVTHREAD_NOMEM || result == TAVTHREAD_AGAIN;
    settle(result, QBL_HERE, exhausted ? kExhausted : kCreate);
}

QBLThreadAutoResetEvent::~QBLThreadAutoResetEvent() { tavXEventDestroy(m_pEvent); }

void QBLThreadAutoResetEvent::wait() {
    settle(tavEventWaitFast(m_pEvent, TAVTHREAD_INFINITE), QBL_HERE, kWait);
}

bool QBLThreadAutoResetEvent::timedWait(unsigned long ms) {
    return settleTimed(tavEventWaitFast(m_pEvent, layerTimeout(ms)), QBL_HERE, kTimedWait);
}

void QBLThreadAutoResetEvent::signal() { settle(tavEventSignalFast(m_pEvent), QBL_HERE, kSignal); }
