#ifndef QBLCORE_THREADPOOLS_INTERNAL_QBLPOOLWORKER_HPP
#define QBLCORE_THREADPOOLS_INTERNAL_QBLPOOLWORKER_HPP

#include <list>

#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"
#include "QBLCore/Threads/shared/QBLHasBegun.hpp"
#include "TavThread/shared/TavContain.hpp"

/// A worker of a pool of a fixed size. A task may end its thread. While this thread ends, it starts
/// another thread, and the worker continues on the new thread. The worker never waits for the end
/// of the earlier threads, because an exit routine may wait for the pool.
class QBLPoolWorker : public QBLThreadRunnable {
public:
    explicit QBLPoolWorker(unsigned long stackSize)
        : m_stackSize(stackSize), m_began(0), m_lock(0) {
        m_threads.emplace_back(this, m_stackSize);
    }

    /// Starts the first thread.
    void begin() { m_threads.front().start(); }
    /// @return false if the thread had no memory to begin.
    bool waitUntilBegun() { return qblHasBegun(m_threads.front(), m_began); }

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
    /// Runs tasks until the pool stops. A cancellation must not end this function between two
    /// tasks.
    /// @param again  true if a task has ended an earlier thread of this worker
    virtual void serve(bool again) = 0;

    /// Waits until the worker has ended. The destructor of a derived class calls it first. From
    /// then on, a thread that ends in a task has no successor.
    void close() {
        {
            QBLThreadGuard guard(m_lock);
            m_bClosed = true;
        }
        for (QBLThread& thread : m_threads) thread.joinQuietly();
    }

private:
    /// Runs on the thread that ends. Tries until a successor has begun, however long this takes.
    void succeed() {
        m_bSucceeded = true;
        while (!tryStart()) QBLThread::sleep(10);
        reap();
    }
    bool tryStart() {
        std::list<QBLThread> next;
        bool done = false;
        tavContain([&] {
            QBLThreadGuard guard(m_lock);
            done = m_bClosed;
            if (done) return;
            next.emplace_back(this, m_stackSize);
            next.back().start();
            done = qblHasBegun(next.back(), m_began);
            if (done) m_threads.splice(m_threads.end(), next);
        });
        return done;
    }
    /// Destroys the earlier threads that have ended. Joins them without the lock, and after the
    /// successor has begun: destructors of thread-local variables may still run, and wait for the
    /// pool.
    void reap() {
        std::list<QBLThread> ended;
        QBLThreadGuard guard(m_lock);
        if (m_bClosed) return;
        for (auto it = m_threads.begin(); it != m_threads.end();) {
            const auto place = it++;
            if (!place->isAlive()) ended.splice(ended.end(), m_threads, place);
        }
    }

    const unsigned long m_stackSize;
    QBLThreadSemaphore m_began;  // posted by each thread
    QBLThreadMutex m_lock;
    bool m_bClosed = false;     // guarded by m_lock
    bool m_bSucceeded = false;  // each thread sets it before it starts the next thread
    // Guarded by m_lock; does not change after m_bClosed is set. The last thread serves.
    std::list<QBLThread> m_threads;
};

#endif
