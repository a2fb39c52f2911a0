#ifndef QBLCORE_THREADPOOLS_INTERNAL_QBLIDLEWORKERS_HPP
#define QBLCORE_THREADPOOLS_INTERNAL_QBLIDLEWORKERS_HPP

#include <atomic>

#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"

/// The stack of a pool's idle workers. The workers wait here and not in the queue: a queue wakes a
/// worker while it still holds its mutex, and the worker then waits for this mutex. wakeOne() first
/// wakes the worker that became idle last, because the data of this worker is most likely still in
/// a processor's cache.
///
/// A worker first enters the stack and then looks into the queue. A submitter first puts a task
/// into the queue and then calls wakeOne(), which reads the size of the stack. So either the worker
/// sees the task, or the submitter sees the worker. Memory order: each side writes one variable,
/// then reads the other one. The size is sequentially consistent, and the queue's mutex changes
/// by locked instructions, which are full barriers on x86.
///
/// Threads: each worker calls waitUnless() with its own place. Any thread may call wakeOne():
/// submitters, a worker that ends, and the thread that stops the pool.
class QBLIdleWorkers {
public:
    /// The place of a worker in the stack.
    class Place {
    public:
        Place() : m_wake(0) {}

    private:
        friend class QBLIdleWorkers;

        Place* m_pBelow = nullptr;  // guarded by m_lock of the stack
        // wakeOne() posts this once after it has removed the place. The worker takes this post
        // before it continues.
        QBLThreadSemaphore m_wake;
    };

    QBLIdleWorkers() : m_lock(0) {}

    /// Wakes a worker, if there is one in the stack.
    void wakeOne() {
        if (m_uSize.load() == 0) return;
        Place* top = nullptr;
        {
            QBLThreadGuard guard(m_lock);
            top = m_pTop;
            if (top != nullptr) remove(m_pTop);
        }
        if (top != nullptr) top->m_wake.post();
    }

    /// Enters the stack, calls `look`, and waits if `look` returns false. Returns when wakeOne()
    /// wakes the worker or the time has run out. The place is then no longer in the stack.
    /// @param look  returns false if there is nothing to do
    /// @param ms  maximum wait in milliseconds
    template <class Look>
    void waitUnless(Place& place, Look look, unsigned long ms) {
        enter(place);
        if (!look() && place.m_wake.boundedWait(ms)) return;
        if (leave(place)) return;
        while (!place.m_wake.boundedWait(QBLWaitForever)) {
        }
    }

private:
    void enter(Place& place) {
        QBLThreadGuard guard(m_lock);
        place.m_pBelow = m_pTop;
        m_pTop = &place;
        m_uSize.store(m_uSize.load(std::memory_order_relaxed) + 1);
    }
    /// @return false if wakeOne() has removed the place.
    bool leave(Place& place) {
        QBLThreadGuard guard(m_lock);
        Place** link = &m_pTop;
        while (*link != nullptr && *link != &place) link = &(*link)->m_pBelow;
        if (*link == nullptr) return false;
        remove(*link);
        return true;
    }
    void remove(Place*& link) QBL_REQUIRES(m_lock) {
        link = link->m_pBelow;
        m_uSize.store(m_uSize.load(std::memory_order_relaxed) - 1, std::memory_order_relaxed);
    }

    QBLThreadMutex m_lock;
    Place* m_pTop QBL_GUARDED_BY(m_lock) = nullptr;
    std::atomic<unsigned int> m_uSize{0};  // changes under m_lock
};

#endif
