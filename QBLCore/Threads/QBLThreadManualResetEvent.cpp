#include "QBLCore/Threads/QBLThreadManualResetEvent.hpp"

#include "QBLCore/Threads/shared/QBLLayerResult.hpp"
#include "TavThread/TavEvent.h"
#include "TavThread/shared/TavEventRecord.hpp"

namespace {

const char kCreate[] =
    "QBLThreadManualResetEvent::QBLThreadManualResetEvent: TavThread interface or unexpected error";
const char kWait[] = "QBLThreadManualResetEvent::wait: TavThread interface or unexpected error";
const char kTimedWait[] =
    "QBLThreadManualResetEvent::timedWait: TavThread interface or unexpected error";
const char kSignal[] = "QBLThreadManualResetEvent::signal: TavThread interface or unexpected error";
const char kReset[] = "QBLThreadManualResetEvent::reset: TavThread interface or unexpected error";

}  // namespace

QBLThreadManualResetEvent::QBLThreadManualResetEvent(int signaled) : m_pEvent(nullptr) {
    initialize(signaled);
}

QBLThreadManualResetEvent::~QBLThreadManualResetEvent() { tavXEventDestroy(m_pEvent); }

void QBLThreadManualResetEvent::initialize(int signaled) {
    TavEvent* made = nullptr;
    settle(tavXEventCreate(&made, 1, signaled, TavEventAttrEnd), QBL_HERE, kCreate);
    if (m_pEvent != nullptr) tavXEventDestroy(m_pEvent);
    m_pEvent = made;
}

void QBLThreadManualResetEvent::wait() {
    settle(tavEventWaitFast(m_pEvent, TAVTHREAD_INFINITE), QBL_HERE, kWait);
}

bool QBLThreadManualResetEvent::timedWait(unsigned long ms) {
    return settleTimed(tavEventWaitFast(m_pEvent, layerTimeout(ms)), QBL_HERE, kTimedWait);
}

void QBLThreadManualResetEvent::signal() {
    settle(tavEventSignalFast(m_pEvent), QBL_HERE, kSignal);
}

void QBLThreadManualResetEvent::reset() { settle(tavXEventReset(m_pEvent), QBL_HERE, kReset); }
