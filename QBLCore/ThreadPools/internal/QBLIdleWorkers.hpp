#ifndef QBLCORE_THREADPOOLS_INTERNAL_QBLIDLEWORKERS_HPP
#define QBLCORE_THREADPOOLS_INTERNAL_QBLIDLEWORKERS_HPP

#include <atomic>

#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"

/// The stack of a pool's idle workers. They wait here instead of in the queue: a queue wakes a
/// worker while its mutex is still held, and the worker then waits for the mutex. The worker that
/// became idle last is woken first, because its data and its processor are ready.
///
/// A worker enters the stack, then looks into the queue. A submitter puts a task into the queue,
/// then calls wakeOne(), which reads the size of the stack. So the worker sees the task, or the
/// submitter sees the worker. Memory order: each side writes one variable, then reads the other
/// one. The size is sequentially consistent, and the queue's semaphore changes by locked
/// instructions, which are full barriers on x86.
class QBLIdleWorkers {
public:
    /// The place of a worker in the stack.
    class Place {
    public:
        Place() : m_wake(0) {}

    private:
        friend class QBLIdleWorkers;

        Place* m_pBelow = nullptr;  // guarded by m_lock of the stack
        // Posted once after each removal by wakeOne(). The worker takes this post before it goes
        // on.
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

    /// Waits in the stack, unless the look finds something. Returns when wakeOne() wakes the worker
    /// or the time is up.
    /// @param look  returns false if there is nothing to do
    /// @param ms  milliseconds; the longest wait
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
