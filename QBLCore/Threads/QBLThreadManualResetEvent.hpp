#ifndef QBLCORE_THREADS_QBLTHREADMANUALRESETEVENT_HPP
#define QBLCORE_THREADS_QBLTHREADMANUALRESETEVENT_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Threads/QBLTimeout.hpp"

struct TavEvent;

/// A signal that lets every waiter pass until it is reset.
///
/// An operation that the thread layer refuses throws QBLThreadResourceError with a text that
/// names the operation.
///
/// Threads: any thread may call any operation but initialize(); the event must outlive every
/// call.
class QBL_API QBLThreadManualResetEvent {
public:
    /// @param signaled  non-zero begins with the signal given
    /// @throws QBLThreadResourceError, also for lack of memory
    explicit QBLThreadManualResetEvent(int signaled = 0);
    virtual ~QBLThreadManualResetEvent();
    QBLThreadManualResetEvent(const QBLThreadManualResetEvent&) = delete;
    QBLThreadManualResetEvent& operator=(const QBLThreadManualResetEvent&) = delete;

    /// Begins anew; on failure the event stays as it was.
    /// Requires: no other thread uses the event meanwhile.
    /// @throws QBLThreadResourceError with the constructor's text
    void initialize(int signaled);

    void wait();
    /// The time begins anew when the signal came and was reset before the waiter saw it.
    /// @return false when the time ran out first.
    [[nodiscard]] bool timedWait(unsigned long ms);
    void signal();
    void reset();

private:
    TavEvent* m_pEvent;
};

#endif
