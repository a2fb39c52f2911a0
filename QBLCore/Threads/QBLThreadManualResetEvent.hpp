#ifndef QBLCORE_THREADS_QBLTHREADMANUALRESETEVENT_HPP
#define QBLCORE_THREADS_QBLTHREADMANUALRESETEVENT_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLTimeout.hpp"

struct TavEvent;

/// An event whose signal lets every waiter pass until the event is reset.
///
/// An operation that the thread layer refuses throws QBLThreadResourceError with a text that
/// names the operation.
///
/// Threads: any thread may call any operation except initialize(); the event must outlive every
/// call.
class QBL_API QBLThreadManualResetEvent {
public:
    /// @param signaled  if not 0, the event is signalled from the start
    /// @throws QBLThreadResourceError, even if memory is exhausted
    explicit QBLThreadManualResetEvent(int signaled = 0);
    virtual ~QBLThreadManualResetEvent();
    QBLThreadManualResetEvent(const QBLThreadManualResetEvent&) = delete;
    QBLThreadManualResetEvent& operator=(const QBLThreadManualResetEvent&) = delete;

    /// Replaces the event by a new one. On failure the event does not change.
    /// Requires: no other thread uses the event at the same time.
    /// @throws QBLThreadResourceError with the constructor's text
    void initialize(int signaled);

    void wait();
    /// If the event is signalled and reset before the waiter notices, the full timeout starts
    /// again.
    /// @return false if the time ran out.
    [[nodiscard]] bool timedWait(unsigned long ms);
    [[nodiscard]] bool timedWait(QBLMilliseconds time) { return timedWait(time.count()); }
    void signal();
    void reset();

private:
    TavEvent* m_pEvent;
};

#endif
