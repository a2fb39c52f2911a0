#include "QBLCore/QBLCustodian/QBLCustodian.hpp"

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Base/QBLNoCancel.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"
#include "QBLCore/Threads/shared/QBLHasBegun.hpp"
#include "QBLCore/Utility/QBLHighResolutionTime.hpp"
#include "QBLCore/Utility/QBLMiniLogger.hpp"
#include "QBLCore/Utility/QBLUtSystemInfo.hpp"
#include "TavThread/shared/TavContain.hpp"

// m_jobLock guards the lists. Threads hold it briefly, and never while a task runs. m_taskLock is
// for the wait between two passes. A thread that holds m_taskLock may take m_jobLock.
//
// 1. During a pass, only the custodian's thread adds entries to m_tasks or erases entries. It does
//    this under m_jobLock, so that other threads may read the list. A caller that deregisters a
//    task replaces its entry by null and waits for the end of the pass. The beginning of each pass
//    increases `passes`. The caller therefore waits for only one pass, even if passes follow each
//    other closely, and no pass waits for the caller.
// 2. Mutexes are not fair: callers that register and deregister without a pause could keep the
//    thread from m_jobLock for a long time. Therefore the thread sets `wanted` before it takes the
//    lock. A caller that sees `wanted` waits once, on `changed`, until the thread releases the
//    lock.
// 3. A task that ends its thread does not end the pass: another thread continues with the next
//    task. `at` and `last` tell the new thread where to continue. Only the thread that runs the
//    pass uses them.
// 4. The custodian is destroyed only when it has no users. A User counts one call. terminate()
//    first takes the custodian out of Shared, then waits until the count is 0. A later call finds
//    no custodian. deRegisterTask() then waits for the end of the stop, because the last pass may
//    call the task.
//
// The thread (m_started) starts with the first task. It waits (waitForPass), calls the tasks
// (inPass), and ends after the pass that began with m_terminating set (lastPass). A task is in
// m_jobs (registered, not in a pass yet), in m_tasks, or in neither list. If a task is withdrawn
// during a pass, m_tasks has a null in its place until the end of the pass. Only a Turn of the
// thread moves tasks from m_jobs to m_tasks.
//
// Memory order: the two locks or the lock of Shared guard everything, except:
//   schedule     is stored before m_taskLock is taken and the wait is woken, so the wait sees the
//                new value.
//   wanted       is a hint. It is read and cleared under m_jobLock: a caller that sees it set waits
//                before the thread has the lock, and the thread's Turn wakes the caller.
//   a task's place in m_tasks during a pass: null is stored and loaded relaxed. It only means "do
//                not call". The end of the pass, under m_jobLock, means that no call runs.
//
// A mistake here would call a destroyed task or wait forever. Tests that detect it, also with
// x64-tsan:
// QBLCustodianTest .DeregistrationWaitsForThePass,
// .SurvivesRegistrationsFromManyThreadsDuringTheStop, .TaskThatEndsItsThreadAffectsNoOtherTask,
// .StopsWithoutWaitingButCallsEveryTaskOnce (a lost signal).
// QBLCustodianScheduleTest.ScheduleIsFrozenAtZeroAndAtAllOnes tests rule 2; its result depends on
// how fair the system's mutexes are.

namespace {

constexpr unsigned long kStackSize = 4096000;
constexpr std::uint64_t kLongest = INT64_MAX;  // longest wait in ms
constexpr unsigned long kFirstSchedule = 60000;
constexpr int kExitStatus = 327;

/// The custodian of the process. Usable before the library starts and after it has stopped.
struct Shared {
    QBLThreadCriticalSection m_globallock{0};
    QBLThreadConditionVariable changed;  // waited on until users is 0, or stopping is false
    QBLCustodian* m_Custodian QBL_GUARDED_BY(m_globallock) = nullptr;
    std::atomic<unsigned long> schedule{kFirstSchedule};     // changes under m_globallock
    unsigned long process QBL_GUARDED_BY(m_globallock) = 0;  // of the custodian's thread
    int users QBL_GUARDED_BY(m_globallock) = 0;  // number of calls that use the custodian
    bool stopping QBL_GUARDED_BY(m_globallock) = false;

    static Shared& instance() { return qblImmortal<Shared>(); }
};

// Created when the library is loaded, so that no stop can fail to create it.
[[maybe_unused]] Shared& g_shared = Shared::instance();

thread_local bool t_isCustodian = false;

/// Logs an error and ends the process, even if logging fails.
[[noreturn]] void die(const char* caption, const char* text) {
    char name[40];
    std::snprintf(name, sizeof name, "qbl_error_%lu", QBLUtSystemInfo::getProcessId());
    QBLMiniLogger(name).log(caption, text);
    _exit(kExitStatus);
}

[[noreturn]] void dieOf(QBLThrowable& error) {
    const char* xml = "";
    tavContain([&] { xml = error.toString(); });
    die("QBLCustodian Caught QBLThrowable", xml);
}

TAV_CATCHES_UNWINDING bool isFinished(QBLCustodianTask& task, int terminating) {
    try {
        return task.doIt(terminating) != 0;
    } catch (abi::__forced_unwind&) {
        throw;
    } catch (QBLThrowable& e) {
        dieOf(e);
    } catch (const std::bad_alloc&) {
        // The odd name in the caption is part of the record format.
        die("QBLCustodian Caught CSTD_STD_NAME::bad_alloc Exception", "");
    } catch (const std::exception& e) {
        die("QBLCustodian Caught C++ Exception", e.what());
    } catch (...) {
        die("QBLCustodian Caught Unknown", "QBLCustodian catch (...)");
    }
}

bool isEndless(unsigned long schedule) {
    // NOLINTNEXTLINE(misc-redundant-expression): the numbers differ if long has 64 bits
    return schedule == ~0UL || schedule == 0xFFFFFFFFUL;
}

bool isFrozen(unsigned long schedule) { return schedule == 0 || isEndless(schedule); }

}  // namespace

/// The class of the custodian that initialize() creates. The layout of the base class is fixed, so
/// this class has the other members.
class QBLCustodian::Body : public QBLCustodian {
public:
    Body() : began(0), other(this, kStackSize) {}
    ~Body() override;

    static Body& of(QBLCustodian& custodian) { return static_cast<Body&>(custodian); }

    void waitForPass();
    void endPass();
    bool begin(QBLThread& thread);
    void succeed();
    /// Waits on `changed`, which the thread broadcasts before it releases m_jobLock.
    void await() QBL_REQUIRES(m_jobLock) {
        ++m_waiting;
        changed.wait(m_jobLock);
        --m_waiting;
    }

    std::atomic<bool> wanted{false};
    QBLThreadConditionVariable changed;  // waited on with m_jobLock
    bool inPass = false;                 // guarded by m_jobLock, like the next two
    unsigned passes = 0;                 // number of passes that have begun
    bool lastPass = false;               // the last pass is over
    // The two threads use these members one after the other.
    QBLListIterator<QBLCustodianTask*> at{m_tasks.begin()};
    int last = 0;
    bool otherServes = false;
    QBLThreadSemaphore began;  // each thread posts it when it begins
    QBLThread other;           // alternates with the base class's thread

    /// Holds m_jobLock for the custodian's thread.
    class QBL_SCOPED_CAPABILITY Turn {
    public:
        explicit Turn(Body& body) QBL_ACQUIRE(body.m_jobLock) : m_body(body) {
            body.wanted = true;
            body.m_jobLock.lock();
            body.wanted = false;
        }
        ~Turn() QBL_RELEASE() {
            if (m_body.m_waiting != 0) m_body.changed.broadcast();
            m_body.m_jobLock.unlock();
        }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

    private:
        Body& m_body;
    };
    /// Holds m_jobLock for a caller of the custodian.
    class QBL_SCOPED_CAPABILITY Call {
    public:
        explicit Call(Body& body) QBL_ACQUIRE(body.m_jobLock) : m_body(body) {
            body.m_jobLock.lock();
            if (body.wanted) body.await();
        }
        ~Call() QBL_RELEASE() { m_body.m_jobLock.unlock(); }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

    private:
        Body& m_body;
    };
};

/// Uses the custodian if there is one, and keeps it alive during the use. A forked process has no
/// custodian, because a fork does not copy the thread.
class QBLCustodian::User {
public:
    User() {
        QBLThreadGuard guard(m_shared.m_globallock);
        if (m_shared.process == QBLUtSystemInfo::getProcessId())
            m_pCustodian = m_shared.m_Custodian;
        if (m_pCustodian != nullptr) ++m_shared.users;
    }
    ~User() {
        if (m_pCustodian == nullptr) return;
        QBLThreadGuard guard(m_shared.m_globallock);
        if (--m_shared.users == 0) m_shared.changed.broadcast();
    }
    User(const User&) = delete;
    User& operator=(const User&) = delete;
    QBLCustodian* custodian() const { return m_pCustodian; }

private:
    Shared& m_shared = Shared::instance();
    QBLCustodian* m_pCustodian = nullptr;
};

bool QBLCustodian::initialize() {
    bool exists = false;
    tavContain([&exists] {
        Shared& shared = Shared::instance();
        QBLThreadGuard guard(shared.m_globallock);
        if (shared.m_Custodian == nullptr) {
            shared.m_Custodian = new Body;
            shared.process = QBLUtSystemInfo::getProcessId();
        }
        exists = true;
    });
    return exists;
}

void QBLCustodian::terminate() {
    const QBLNoCancel noCancel;
    Shared& shared = Shared::instance();
    QBLCustodian* last = nullptr;
    {
        QBLThreadGuard guard(shared.m_globallock);
        last = shared.m_Custodian;
        shared.m_Custodian = nullptr;
        if (shared.process != QBLUtSystemInfo::getProcessId()) {
            // The custodian belongs to the parent process. There is no thread to wait for, and its
            // locks may never be released.
            shared.users = 0;
            shared.stopping = false;
            return;
        }
        shared.stopping = true;
        while (shared.users != 0) shared.changed.wait(shared.m_globallock);
    }
    delete last;
    QBLThreadGuard guard(shared.m_globallock);
    shared.stopping = false;
    shared.changed.broadcast();
}

unsigned long QBLCustodian::setSchedule(unsigned long ms) {
    Shared& shared = Shared::instance();
    unsigned long before = 0;
    {
        QBLThreadGuard guard(shared.m_globallock);
        before = shared.schedule;
        if (isFrozen(before)) return before;
        shared.schedule = ms;
    }
    User user;  // the thread may still wait for the previous time
    if (user.custodian() != nullptr) {
        user.custodian()->lockForChange();
        user.custodian()->m_taskLock.unlock();
        user.custodian()->m_wakeup.signal();
    }
    return before;
}

unsigned long QBLCustodian::getSchedule() {
    Shared& shared = Shared::instance();
    QBLThreadGuard guard(shared.m_globallock);
    return shared.schedule;
}

bool QBLCustodian::registerTask(QBLCustodianTask* task) {
    const QBLNoCancel noCancel;
    QBL_ALLOC_TRY
    User user;
    return user.custodian() != nullptr && user.custodian()->assignTask(task);
    QBL_ALLOC_CATCH
}

bool QBLCustodian::deRegisterTask(QBLCustodianTask* task) {
    const QBLNoCancel noCancel;
    {
        User user;
        if (user.custodian() != nullptr) return user.custodian()->removeTask(task);
    }
    // If a custodian is being stopped, its last pass may still call the task.
    Shared& shared = Shared::instance();
    QBLThreadGuard guard(shared.m_globallock);
    while (shared.stopping && shared.process == QBLUtSystemInfo::getProcessId() && !t_isCustodian)
        shared.changed.wait(shared.m_globallock);
    return false;
}

QBLCustodian::QBLCustodian()
    : QBLThread(nullptr, kStackSize),
      m_taskLock(0),
      m_jobLock(0),
      m_started(0),
      m_terminating(0),
      m_waiting(0) {}

QBLCustodian::~QBLCustodian() = default;

// When the destructor returns, this object's own thread and the thread `other` have ended. If a
// task ends the thread that runs it, this thread starts the other one of the two. So if there is a
// task, the destructor waits for the end of the last pass before it joins a thread. Without tasks,
// it does not wait for the last pass, so the caller sleeps only once, until the thread has ended.
QBLCustodian::Body::~Body() {
    lockForChange();
    {
        QBLThreadGuard guard(m_jobLock);
        m_terminating = 1;
    }
    m_taskLock.unlock();
    m_wakeup.signal();
    {
        QBLThreadGuard guard(m_jobLock);
        const bool idle = !inPass && m_tasks.empty() && m_jobs.empty();
        while (!idle && m_started != 0 && !lastPass) await();
    }
    joinQuietly();
    other.joinQuietly();
}

// Locks m_taskLock for a change that the thread must notice. The thread does not hold this lock
// during a pass. The caller unlocks m_taskLock and then signals m_wakeup. In the reverse order, the
// thread would wake up and then sleep again to wait for the lock.
void QBLCustodian::lockForChange() { m_taskLock.lock(); }

bool QBLCustodian::assignTask(QBLCustodianTask* task) {
    if (task == nullptr) return true;
    Body& body = Body::of(*this);
    const Body::Call call(body);
    if (m_started == 0 && m_terminating == 0 && body.begin(*this)) m_started = 1;
    if (m_started == 0 || m_terminating == 1) return false;  // the next registration tries again
    // The names of the variables are part of the assertions' texts.
    for (auto iterJobs = m_jobs.begin(); iterJobs != m_jobs.end(); ++iterJobs)
        QBL_ASSERT(task != *iterJobs);
    for (auto iter = m_tasks.begin(); iter != m_tasks.end(); ++iter) QBL_ASSERT(task != *iter);
    m_jobs.push_front(task);
    return true;
}

bool QBLCustodian::removeTask(QBLCustodianTask* task) {
    const auto find = [task](QBLList<QBLCustodianTask*>& in) {
        auto it = in.begin();
        while (it != in.end() && (*it != task || task == nullptr)) ++it;
        return it;
    };
    Body& body = Body::of(*this);
    const Body::Call call(body);
    if (const auto it = find(m_jobs); it != m_jobs.end()) {
        m_jobs.erase(it);
        return true;
    }
    if (t_isCustodian) return false;
    const auto it = find(m_tasks);
    const bool found = it != m_tasks.end();
    if (!body.inPass) {
        if (found) m_tasks.erase(it);
        return found;
    }
    if (found) __atomic_store_n(&*it, nullptr, __ATOMIC_RELAXED);
    for (const unsigned pass = body.passes; body.inPass && body.passes == pass;) body.await();
    return found;
}

void QBLCustodian::run() {
    t_isCustodian = true;
    const QBLNoCancel noCancel;
    Body& body = Body::of(*this);
    body.began.post();
    struct Succession {
        Body* body;
        ~Succession() {
            if (body != nullptr) body->succeed();
        }
    } succession{&body};
    do {
        if (!body.inPass) body.waitForPass();
        callTasks();
        body.endPass();
    } while (body.last == 0);
    succession.body = nullptr;
}

// A new time between passes is counted from the beginning of the wait.
void QBLCustodian::Body::waitForPass() {
    const std::int64_t begin = QBLHighResolutionTime::now();
    {
        QBLThreadGuard guard(m_taskLock);
        while (m_terminating == 0) {
            const unsigned long schedule = Shared::instance().schedule;
            if (isEndless(schedule)) {
                m_wakeup.wait(m_taskLock);
                continue;
            }
            const std::int64_t waited = (QBLHighResolutionTime::now() - begin) / 1000000;
            const std::int64_t left =
                static_cast<std::int64_t>(std::min<std::uint64_t>(schedule, kLongest)) - waited;
            if (left <= 0) break;
            static_cast<void>(m_wakeup.timedWait(m_taskLock, static_cast<unsigned long>(left)));
        }
    }
    if (Shared::instance().schedule == 0) yield();  // lets callers run even if there is no task
    Turn turn(*this);
    takeNewTasks();
    at = m_tasks.begin();
    last = m_terminating;
    inPass = true;
    ++passes;
}

void QBLCustodian::takeNewTasks() {
    while (!m_jobs.empty()) m_tasks.splice(m_tasks.begin(), m_jobs, m_jobs.begin());
}

void QBLCustodian::callTasks() {
    Body& body = Body::of(*this);
    struct Step {
        Body& body;
        bool finished = false;
        ~Step() {
            if (!finished) {
                ++body.at;
                return;
            }
            const Body::Turn turn(body);
            body.at = body.m_tasks.erase(body.at);
        }
    };
    while (body.at != m_tasks.end()) {
        Step step{body};
        QBLCustodianTask* const task = __atomic_load_n(&*body.at, __ATOMIC_RELAXED);
        if (task != nullptr) {
            step.finished = isFinished(*task, body.last);
            yield();
        }
    }
}

void QBLCustodian::Body::endPass() {
    Turn turn(*this);
    inPass = false;
    if (last != 0) lastPass = true;
    if (m_waiting == 0) return;
    for (auto it = m_tasks.begin(); it != m_tasks.end();) {
        if (*it == nullptr)
            it = m_tasks.erase(it);
        else
            ++it;
    }
}

/// @return true if the thread has begun.
bool QBLCustodian::Body::begin(QBLThread& thread) {
    bool begun = false;
    tavContain([&] {
        thread.joinQuietly();
        thread.start();
        begun = qblHasBegun(thread, began);
    });
    return begun;
}

/// Runs on a thread that a task has ended. Tries until another thread has begun, however long this
/// takes.
void QBLCustodian::Body::succeed() {
    otherServes = !otherServes;
    while (!begin(otherServes ? other : *this)) sleep(10);
}
