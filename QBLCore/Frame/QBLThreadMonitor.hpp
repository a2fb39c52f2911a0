#ifndef QBLCORE_FRAME_QBLTHREADMONITOR_HPP
#define QBLCORE_FRAME_QBLTHREADMONITOR_HPP

#include "QBLCore/Frame/QBLBinder.hpp"

/// A QBLBinder that may be used and destroyed through a pointer to any of its base classes.
///
/// Threads: as for QBLBinder.
///
///     QBLThreadMonitor<QBLThreadMutex, QBLList<Job*>> jobs;
///     QBLThreadGuard guard(jobs);
///     (*jobs).push_back(&job);
template <class Lock, class Data>
class QBLThreadMonitor : public QBLBinder<Lock, Data> {
public:
    using QBLBinder<Lock, Data>::QBLBinder;
    QBLThreadMonitor() = default;
    ~QBLThreadMonitor() override = default;
};

#endif
