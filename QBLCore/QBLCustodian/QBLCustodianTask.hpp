#ifndef QBLCORE_QBLCUSTODIAN_QBLCUSTODIANTASK_HPP
#define QBLCORE_QBLCUSTODIAN_QBLCUSTODIANTASK_HPP

#include "QBLCore/Frame/QBLExport.h"

/// Housekeeping that the custodian does from time to time. Whoever registers a task owns it, and
/// destroys it, or registers it again, only after QBLCustodian::deRegisterTask() has returned or
/// the library was stopped: also one that has told to be dropped.
///
/// Threads: doIt() is called by the custodian's thread alone.
class QBL_API QBLCustodianTask {
public:
    virtual ~QBLCustodianTask();

    /// Does one pass of the work, on the custodian's thread. It may register tasks but not
    /// deregister any that was in a pass already, nor start or stop the library, which may be
    /// waiting for it. What it throws ends the process: see QBLCustodian. If it ends its thread,
    /// the custodian goes on with another one; cancellations have no effect there.
    /// @param terminating  1 in the last pass, while the library stops; else 0
    /// @return non-zero when the task is finished and to be dropped; 0 to be called again
    virtual int doIt(int terminating) = 0;
};

#endif
