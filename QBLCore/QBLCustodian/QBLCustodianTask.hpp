#ifndef QBLCORE_QBLCUSTODIAN_QBLCUSTODIANTASK_HPP
#define QBLCORE_QBLCUSTODIAN_QBLCUSTODIANTASK_HPP

#include "QBLCore/Frame/QBLExport.h"

/// A task that the custodian calls periodically. The program that registers a task owns it. It may
/// destroy the task, or register it again, only after QBLCustodian::deRegisterTask() has returned
/// or the library was stopped. This also applies if doIt() has asked to drop the task.
///
/// Threads: only the custodian's thread calls doIt().
class QBL_API QBLCustodianTask {
public:
    virtual ~QBLCustodianTask();

    /// Does one pass of the work, on the custodian's thread. It may register tasks. It must not
    /// deregister a task that has already been in a pass. It must not start or stop the library,
    /// which may be waiting for it. An exception that leaves it ends the process: see QBLCustodian.
    /// If it ends its thread, the custodian continues with another thread. Cancellations have no
    /// effect on the custodian's threads.
    /// @param terminating  1 in the last pass, while the library stops; else 0
    /// @return non-zero if the task is finished, so that the custodian drops it; 0 to be called
    ///     again
    virtual int doIt(int terminating) = 0;
};

#endif
