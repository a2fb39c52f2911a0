#ifndef QBLCORE_THREADS_QBLTHREADAUTORESETEVENT_HPP
#define QBLCORE_THREADS_QBLTHREADAUTORESETEVENT_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLTimeout.hpp"

struct TavEvent;

/// An event whose signal exactly one waiter takes. Without a waiter, the signal stays until a
/// waiter comes. Several signals before that count as one signal.
///
/// An operation that the thread layer refuses throws QBLThreadResourceError with a text that
/// names the operation.
///
/// Threads: any thread may call any operation; the event must outlive every call.
class QBL_API QBLThreadAutoResetEvent {
public:
    /// @param signaled  if not 0, the event is signalled from the start
    /// @throws QBLThreadResourceError, even if memory is exhausted
    explicit QBLThreadAutoResetEvent(int signaled = 0);
    virtual ~QBLThreadAutoResetEvent();
    QBLThreadAutoResetEvent(const QBLThreadAutoResetEvent&) = delete;
    QBLThreadAutoResetEvent& operator=(const QBLThreadAutoResetEvent&) = delete;

    void wait();
    /// If another waiter takes the signal first, the full timeout starts again.
    /// @return false if the time ran out.
    [[nodiscard]] bool timedWait(unsigned long ms);
    [[nodiscard]] bool timedWait(QBLMilliseconds time) { return timedWait(time.count()); }
    void signal();

private:
    TavEvent* m_pEvent;
};

#endif
