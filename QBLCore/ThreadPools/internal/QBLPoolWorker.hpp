#ifndef QBLCORE_THREADPOOLS_INTERNAL_QBLPOOLWORKER_HPP
#define QBLCORE_THREADPOOLS_INTERNAL_QBLPOOLWORKER_HPP

#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"
#include "QBLCore/Threads/shared/QBLHasBegun.hpp"
#include "TavThread/shared/TavContain.hpp"

/// A worker of a pool of a fixed size. A task may end the thread that runs it. The worker then
/// continues with another thread. It has two threads, and the one that ends starts the other one.
class QBLPoolWorker : public QBLThread {
public:
    explicit QBLPoolWorker(unsigned long stackSize)
        : QBLThread(nullptr, stackSize), m_began(0), m_lock(0), m_other(this, stackSize) {}

    /// Starts the first thread.
    void begin() { start(); }
    /// @return false if the thread had no memory to begin.
    bool waitUntilBegun() { return hasBegun(*this); }

    void run() final {
        m_began.post();
        struct Succession {
            QBLPoolWorker* worker;
            ~Succession() {
                if (worker != nullptr) worker->succeed();
            }
        } succession{this};
        serve(m_bSucceeded);
        succession.worker = nullptr;
    }

protected:
    /// Runs tasks until the pool stops. A cancellation must not end it between two tasks.
    /// @param again  true if a task has ended an earlier thread of this worker
    virtual void serve(bool again) = 0;

    /// Waits until the worker has ended. The destructor of a derived class calls it first. From
    /// then on, a thread that ends in a task has no successor.
    void close() {
        {
            QBLThreadGuard guard(m_lock);
            m_bClosed = true;
        }
        joinQuietly();
        m_other.joinQuietly();
    }

private:
    bool hasBegun(QBLThread& thread) { return qblHasBegun(thread, m_began); }

    /// Runs on the thread that ends. Tries until a successor has begun, however long this takes.
    void succeed() {
        m_bSucceeded = true;
        m_bOtherServes = !m_bOtherServes;
        QBLThread& next = m_bOtherServes ? m_other : *this;
        while (!tryStart(next)) QBLThread::sleep(10);
    }
    bool tryStart(QBLThread& next) {
        QBLThreadGuard guard(m_lock);
        if (m_bClosed) return true;
        bool begun = false;
        tavContain([&] {
            next.joinQuietly();
            next.start();
            begun = hasBegun(next);
        });
        return begun;
    }

    QBLThreadSemaphore m_began;  // posted by each thread
    QBLThreadMutex m_lock;
    bool m_bClosed = false;  // guarded by m_lock
    // Used by one thread after the other.
    bool m_bSucceeded = false;
    bool m_bOtherServes = false;
    QBLThread m_other;
};

#endif
