#ifndef QBLCORE_QBLCUSTODIAN_QBLCUSTODIAN_HPP
#define QBLCORE_QBLCUSTODIAN_QBLCUSTODIAN_HPP

#include <atomic>

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/QBLCustodian/QBLCustodianTask.hpp"
#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadConditionVariable.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"

/// One background thread per process that calls registered tasks periodically. When the library
/// stops, the thread calls each remaining task one last time. The custodian exists while the
/// library runs; its thread starts with the first registration.
///
/// If a task throws, the process ends at once with _exit(327), which the system reports as 71. No
/// further tasks or destructors run. The mini logger writes a record of the error to
/// `../logs/qbl_error_PID.log`, where PID is the process ID, if the directory exists.
///
/// A forked process has no custodian until it stops the library and starts it again. Stop and start
/// are allowed only if no other thread was in a library call at the time of the fork. A lock that
/// such a thread held is never released in the new process.
///
/// Threads: any thread may call any operation, except initialize() and terminate(), which the start
/// and stop of the library call.
class QBL_API QBLCustodian : public QBLThread {
public:
    /// @name Start and stop
    /// @{

    /// @return true if there is a custodian now, even if it existed before.
    static bool initialize();
    /// Removes the custodian. Waits for its last pass and for registrations in progress.
    static void terminate();
    /// @}

    /// @name Schedule
    /// @{

    /// Sets the time between two passes. 0 means no pause between passes; 0xFFFFFFFF and ULONG_MAX
    /// mean no pass except when the library stops. After one of these values has been set, the
    /// schedule deliberately never changes again.
    /// @param ms  milliseconds; initially 60000. A wait in progress uses the new time, counted from
    ///     the beginning of the wait.
    /// @return the previous time
    static unsigned long setSchedule(unsigned long ms);
    static unsigned long setSchedule(QBLMilliseconds time) { return setSchedule(time.count()); }
    static unsigned long getSchedule();
    /// @}

    /// @name Tasks
    /// @{

    /// Registers a task, which is called from the next pass on. Tasks registered between two passes
    /// are called in the order of their registration, and before older tasks. A cancellation of the
    /// caller takes effect only afterwards.
    /// @param task  not owned; null is accepted and does nothing
    /// @return false if there is no custodian, if it is stopping, or if its thread cannot be
    ///     started. The task is then not registered.
    /// @throws QBLAssertError if the task is already registered; QBLOutOfMemoryError
    static bool registerTask(QBLCustodianTask* task);
    /// Withdraws a task. Waits for a pass in progress, and for the last pass if the library is
    /// being stopped. When this operation returns, the task is not running and will not be called
    /// again. Also call it for a finished task, before you destroy the task or register it again:
    /// after doIt() has returned, the custodian may not have dropped the task yet. A cancellation
    /// of the caller takes effect only afterwards.
    /// @return false if the task is not registered. If called in doIt(), also false for a task that
    ///     has already been in a pass, because doIt() cannot wait for the end of its own pass.
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
    QBLList<QBLCustodianTask*> m_tasks;   // changed under m_jobLock; see rule 1 in the source
    QBLThreadCriticalSection m_jobLock;   // may be taken under m_taskLock, not the reverse
    QBLList<QBLCustodianTask*> m_jobs;    // tasks not in a pass yet, newest first; under m_jobLock
    int m_started;                        // under m_jobLock
    int m_terminating;                    // changed under both locks, read under either
    std::atomic<int> m_waiting;           // callers that wait for the thread; under m_jobLock
};

#endif
