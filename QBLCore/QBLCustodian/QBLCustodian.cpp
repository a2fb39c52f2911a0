#include "QBLCore/QBLCustodian/QBLCustodian.hpp"

#include <unistd.h>

#include <cstdio>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Frame/internal/QBLImmortal.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Utility/QBLMiniLogger.hpp"
#include "QBLCore/Utility/QBLUtSystemInfo.hpp"
#include "TavThread/internal/TavContain.hpp"

namespace {

constexpr unsigned long kStackSize = 4096000;
constexpr unsigned long kFirstSchedule = 60000;
constexpr int kExitStatus = 327;

/// The custodian of the process. Usable before the library starts and after it has stopped.
struct Shared {
    QBLThreadCriticalSection m_globallock{0};
    QBLThreadConditionVariable changed;  // for waits until there are no users, or no stop
    QBLCustodian* m_Custodian QBL_GUARDED_BY(m_globallock) = nullptr;
    unsigned long m_schedule QBL_GUARDED_BY(m_globallock) = kFirstSchedule;
    unsigned long process QBL_GUARDED_BY(m_globallock) = 0;  // that has the custodian's thread
    int users QBL_GUARDED_BY(m_globallock) = 0;              // calls that use the custodian
    bool stopping QBL_GUARDED_BY(m_globallock) = false;

    static Shared& instance() { return qblImmortal<Shared>(); }
};

// Made when the library is loaded, so that no stop fails for want of it.
[[maybe_unused]] Shared& g_shared = Shared::instance();

thread_local bool t_isCustodian = false;

/// Neither the log nor its texts may keep the process from ending.
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
        // The caption's odd name is part of the records' form.
        die("QBLCustodian Caught CSTD_STD_NAME::bad_alloc Exception", "");
    } catch (const std::exception& e) {
        die("QBLCustodian Caught C++ Exception", e.what());
    } catch (...) {
        die("QBLCustodian Caught Unknown", "QBLCustodian catch (...)");
    }
}

bool isFrozen(unsigned long schedule) {
    return schedule == 0 || schedule == ~0UL || schedule == 0xFFFFFFFFUL;
}

}  // namespace

/// Uses the custodian, if there is one, which does not go away meanwhile. A forked process has
/// none: the thread stayed behind.
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
            shared.m_Custodian = new QBLCustodian;
            shared.process = QBLUtSystemInfo::getProcessId();
        }
        exists = true;
    });
    return exists;
}

void QBLCustodian::terminate() {
    Shared& shared = Shared::instance();
    QBLCustodian* last = nullptr;
    {
        QBLThreadGuard guard(shared.m_globallock);
        last = shared.m_Custodian;
        shared.m_Custodian = nullptr;
        if (shared.process != QBLUtSystemInfo::getProcessId()) {
            // Of the process that this one was forked from: there is no thread to wait for, and
            // its locks may be held for ever.
            shared.users = 0;
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
    QBLThreadGuard guard(shared.m_globallock);
    const unsigned long before = shared.m_schedule;
    if (!isFrozen(before)) shared.m_schedule = ms;
    return before;
}

unsigned long QBLCustodian::getSchedule() {
    Shared& shared = Shared::instance();
    QBLThreadGuard guard(shared.m_globallock);
    return shared.m_schedule;
}

bool QBLCustodian::registerTask(QBLCustodianTask* task) {
    QBL_ALLOC_TRY
    User user;
    return user.custodian() != nullptr && user.custodian()->assignTask(task);
    QBL_ALLOC_CATCH
}

bool QBLCustodian::deRegisterTask(QBLCustodianTask* task) {
    {
        User user;
        if (user.custodian() != nullptr) return user.custodian()->removeTask(task);
    }
    // The last pass of one that is being stopped may still call the task.
    Shared& shared = Shared::instance();
    QBLThreadGuard guard(shared.m_globallock);
    while (shared.stopping && !t_isCustodian) shared.changed.wait(shared.m_globallock);
    return false;
}

QBLCustodian::QBLCustodian()
    : QBLThread(nullptr, kStackSize),
      m_taskLock(0),
      m_jobLock(0),
      m_started(0),
      m_terminating(0),
      m_waiting(0) {}

QBLCustodian::~QBLCustodian() {
    bool started = false;
    lockForChange();
    {
        QBLThreadGuard guard(m_jobLock);
        m_terminating = 1;
        started = m_started != 0;
    }
    m_wakeup.signal();
    m_taskLock.unlock();
    if (started) join();
}

// Takes m_taskLock before the thread can have it again for a pass: with passes that follow each
// other at once it would hardly ever be free long enough for another.
void QBLCustodian::lockForChange() {
    ++m_waiting;
    m_taskLock.lock();
    --m_waiting;
}

bool QBLCustodian::assignTask(QBLCustodianTask* task) {
    if (task == nullptr) return true;
    QBLThreadGuard guard(m_jobLock);
    if (m_started == 0 && m_terminating == 0) {
        try {
            start();
            m_started = 1;
        } catch (QBLThrowable&) {  // the next registration tries again
        }
    }
    if (m_started == 0 || m_terminating == 1 || !isAlive()) return false;
    // The names are part of the assertions' texts.
    for (auto iterJobs = m_jobs.begin(); iterJobs != m_jobs.end(); ++iterJobs)
        QBL_ASSERT(task != *iterJobs);
    for (auto iter = m_tasks.begin(); iter != m_tasks.end(); ++iter) QBL_ASSERT(task != *iter);
    m_jobs.push_front(task);
    return true;
}

bool QBLCustodian::removeTask(QBLCustodianTask* task) {
    const auto erase = [task](QBLList<QBLCustodianTask*>& from) {
        for (auto it = from.begin(); it != from.end(); ++it) {
            if (*it != task) continue;
            from.erase(it);
            return true;
        }
        return false;
    };
    {
        QBLThreadGuard guard(m_jobLock);
        if (erase(m_jobs)) return true;
    }
    if (t_isCustodian) return false;
    lockForChange();
    bool removed = false;
    {
        QBLThreadGuard guard(m_jobLock);
        removed = erase(m_tasks);
    }
    m_taskLock.unlock();
    return removed;
}

// However the thread ends, the lock is free afterwards.
void QBLCustodian::run() {
    t_isCustodian = true;
    QBLThreadGuard guard(m_taskLock);
    for (int last = 0; last == 0;) {
        // A stop that came before the thread did has signalled nobody.
        if (m_terminating == 0) static_cast<void>(m_wakeup.timedWait(m_taskLock, getSchedule()));
        last = m_terminating;
        takeNewTasks();
        callTasks();
        if (m_waiting == 0) continue;
        m_taskLock.unlock();
        while (m_waiting != 0) yield();
        m_taskLock.lock();
    }
}

void QBLCustodian::takeNewTasks() {
    QBLThreadGuard guard(m_jobLock);
    while (!m_jobs.empty()) m_tasks.splice(m_tasks.begin(), m_jobs, m_jobs.begin());
}

void QBLCustodian::callTasks() {
    for (auto it = m_tasks.begin(); it != m_tasks.end();) {
        const bool finished = isFinished(**it, m_terminating);
        yield();
        if (finished) {
            QBLThreadGuard guard(m_jobLock);
            it = m_tasks.erase(it);
        } else {
            ++it;
        }
    }
}
