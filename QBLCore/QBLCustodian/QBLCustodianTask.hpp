#ifndef QBLCORE_QBLCUSTODIAN_QBLCUSTODIANTASK_HPP
#define QBLCORE_QBLCUSTODIAN_QBLCUSTODIANTASK_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// A task that the custodian calls periodically. The program that registers a task owns it. It may
/// destroy the task, or register it again, only after QBLCustodian::deRegisterTask() has returned
/// or the library was stopped. This also applies if doIt() has asked to drop the task.
///
/// Threads: only the custodian's thread calls doIt().
class QBL_API QBLCustodianTask {
public:
    virtual ~QBLCustodianTask();

    /// Does one pass of the work, on the custodian's thread. doIt() may register tasks. It must not
    /// deregister a task that has already been in a pass. It must not start or stop the library,
    /// because the library may be waiting for doIt(). For the same reason it must not call
    /// I18NPooledString::initialize() or terminate(). QBLCustodian::deRegisterTask() and the stop
    /// of the library wait for doIt(), so doIt() must not take a lock that a thread holds while it
    /// calls them, and must not wait for such a thread. An exception that leaves doIt() ends the
    /// process: see QBLCustodian. If doIt() ends its thread, the custodian continues with another
    /// thread. Cancellations have no effect on the custodian's threads.
    /// @param terminating  1 in the last pass, while the library stops; otherwise 0
    /// @return 0 if the custodian must call the task again; any other value if the task is finished
    ///     and the custodian must drop it
    virtual int doIt(int terminating) = 0;
};

#endif
