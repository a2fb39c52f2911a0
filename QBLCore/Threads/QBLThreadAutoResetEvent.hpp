#ifndef QBLCORE_THREADS_QBLTHREADAUTORESETEVENT_HPP
#define QBLCORE_THREADS_QBLTHREADAUTORESETEVENT_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Threads/QBLTimeout.hpp"

struct TavEvent;

/// A signal that exactly one waiter takes; without a waiter it stays until one comes.
/// Signalling twice before that is as good as once.
///
/// An operation that the thread layer refuses throws QBLThreadResourceError with a text that
/// names the operation.
///
/// Threads: any thread may call any operation; the event must outlive every call.
class QBL_API QBLThreadAutoResetEvent {
public:
    /// @param signaled  non-zero begins with the signal given
    /// @throws QBLThreadResourceError, also for lack of memory
    explicit QBLThreadAutoResetEvent(int signaled = 0);
    virtual ~QBLThreadAutoResetEvent();
    QBLThreadAutoResetEvent(const QBLThreadAutoResetEvent&) = delete;
    QBLThreadAutoResetEvent& operator=(const QBLThreadAutoResetEvent&) = delete;

    void wait();
    /// The time begins anew when another waiter was faster.
    /// @return false when the time ran out first.
    [[nodiscard]] bool timedWait(unsigned long ms);
    void signal();

private:
    TavEvent* m_pEvent;
};

#endif
