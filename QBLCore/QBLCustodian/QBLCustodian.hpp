#ifndef QBLCORE_QBLCUSTODIAN_QBLCUSTODIAN_HPP
#define QBLCORE_QBLCUSTODIAN_QBLCUSTODIAN_HPP

#include <atomic>

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/QBLCustodian/QBLCustodianTask.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadConditionVariable.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"

/// One background thread per process that calls registered tasks periodically, and each that is
/// left a last time when the library stops. It exists while the library runs; its thread starts
/// with the first registration.
///
/// A task that throws ends the process at once with _exit(327), which the system reports as 71,
/// without further tasks or destructors; a record of the error goes to the mini logger's file
/// `qbl_error_` and the process's number.
///
/// A process that is forked has no custodian until it stops the library and starts it anew. It may
/// do so only if no other thread was in a call of the library at the fork: a lock that such a
/// thread held is never given back in the new process.
///
/// Threads: any thread may call any operation; but for those that start and stop the custodian,
/// which belong to the start and stop of the library.
class QBL_API QBLCustodian : public QBLThread {
public:
    /// @name Start and stop
    /// @{

    /// @return whether there is a custodian now, also one that was there before.
    static bool initialize();
    /// Takes the custodian away, waiting for its last pass and for registrations under way.
    static void terminate();
    /// @}

    /// @name Schedule
    /// @{

    /// @param ms  time between two passes, 60000 at first; a wait under way takes it over, counted
    ///     from its beginning. Once it is 0 (one pass after the other) or all ones (none but at the
    ///     stop) it stays so for the process's life, deliberately.
    /// @return the time set before
    static unsigned long setSchedule(unsigned long ms);
    static unsigned long getSchedule();
    /// @}

    /// @name Tasks
    /// @{

    /// Has a task called from the next pass on. Tasks registered between two passes are called in
    /// their order, and before those that were there. The caller is not cancelled meanwhile.
    /// @param task  not owned; null is accepted and does nothing
    /// @return false, with the task not kept, when there is no custodian, it is stopping or its
    ///     thread cannot be started
    /// @throws QBLAssertError for a task that is registered; QBLOutOfMemoryError
    static bool registerTask(QBLCustodianTask* task);
    /// Withdraws a task, waiting for a pass that is under way, and for the last one of a library
    /// that is being stopped: the task is not being called when this returns, and will not be
    /// again. Call it also for a task that was dropped, before the task is destroyed or registered
    /// again: its doIt() may have returned, and the custodian not have dropped it yet. The caller
    /// is not cancelled meanwhile.
    /// @return false for a task that is not registered; also from inside a task, which cannot wait
    ///     for its own pass, for a task that was in a pass already
    static bool deRegisterTask(QBLCustodianTask* task);
    /// @}

    /// @name The thread
    /// @{

    void run() override;
    /// @}

private:
    class Body;
    class User;

    QBLCustodian();
    ~QBLCustodian() override;

    bool assignTask(QBLCustodianTask* task);
    bool removeTask(QBLCustodianTask* task);
    void lockForChange() QBL_ACQUIRE(m_taskLock);
    void takeNewTasks() QBL_REQUIRES(m_jobLock);
    void callTasks();

    QBLThreadCriticalSection m_taskLock;  // for the wait between two passes
    QBLThreadConditionVariable m_wakeup;  // waited on with m_taskLock
    QBLList<QBLCustodianTask*> m_tasks;   // changed under m_jobLock, in a pass by the thread alone
    QBLThreadCriticalSection m_jobLock;   // may be taken under m_taskLock, not the other way
    QBLList<QBLCustodianTask*> m_jobs;    // not in a pass yet, the newest first; under m_jobLock
    int m_started;                        // under m_jobLock
    int m_terminating;                    // changed under both locks, read under either
    std::atomic<int> m_waiting;           // callers that wait for the thread; under m_jobLock
};

#endif
