#ifndef QBLCORE_THREADPOOLS_QBLSENTINELQUEUE_HPP
#define QBLCORE_THREADPOOLS_QBLSENTINELQUEUE_HPP

#include <optional>
#include <type_traits>

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/Frame/QBLThreadMonitor.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"

// The count of m_available is that of the items, and of the nulls of wake(), that no get() has
// claimed. Items are inserted first and posted then, both under the mutex. get() takes a count
// first and the mutex then, and gives a null if there is no item. So items come out before nulls.
//   withdraw()  takes an item together with a count. If no count is left, as many get() are under
//               way as there are items, and one of them takes this one.
//   m_free      counts the room of a bounded queue: reserve() takes from it; get() that finds an
//               item, withdraw() and release() give back.
//   m_spares    up to 64 nodes of items that are gone, under the mutex, for items that come.
// An operation that fails undoes its part, so that both counts stay true.
//
// The mutex orders what putters wrote before. The semaphores are those of TavBoundedWait.cpp.
// QBLSentinelQueueTest shows failures, and QBLThreadPoolTest the counts, with x64-tsan too.

/// A first-in first-out queue whose takers wait for items and whose putters, if it is bounded,
/// wait for room. Waits end at once when what they wait for comes, and at their bound.
///
/// T is default-constructible and copyable; the library keeps pointers in it.
///
/// Threads: any thread may call any operation; nobody may still wait when it is destroyed.
template <class T>
class QBLSentinelQueue {
public:
    /// @param capacity  most items at a time; 0 means unbounded
    explicit QBLSentinelQueue(unsigned long capacity = 0) : m_available(0) {
        if (capacity > 0) m_free.emplace(capacity);
    }
    QBLSentinelQueue(const QBLSentinelQueue&) = delete;
    QBLSentinelQueue& operator=(const QBLSentinelQueue&) = delete;

    /// @param timeout  ms to wait for room, as for every wait
    /// @return false when the queue stayed full; it then holds no copy of the item.
    /// @throws std::bad_alloc, QBLThreadResourceError; the queue is as it was
    [[nodiscard]] bool put(T& item, unsigned long timeout) { return add(item, timeout, false); }

    /// As put(), but the item comes out before those that are there already.
    [[nodiscard]] bool putFirst(T& item, unsigned long timeout) { return add(item, timeout, true); }

    /// @param item  receives the item that was put first
    /// @return false when nothing came in time; item is then as it was.
    /// @throws what copying an item throws; the queue is then as it was
    [[nodiscard]] bool get(T& item, unsigned long timeout) {
        if (!m_available.boundedWait(timeout)) return false;
        bool taken = false;
        try {
            QBLThreadGuard guard(m_items);
            taken = !(*m_items).empty();
            item = taken ? (*m_items).front() : T();
            removeFront();
        } catch (...) {
            m_available.post();
            throw;
        }
        if (taken && m_free) m_free->post();
        return true;
    }

    /// Lets one get() return with a null item, after all the items that were put. It needs
    /// neither memory nor room, so it can always be called to end a waiting thread.
    void wake() { m_available.post(); }

    /// Takes an item back that nobody has got yet.
    /// @return false when it is not in the queue any more, or a get() under way will take it.
    [[nodiscard]] bool withdraw(const T& item) {
        {
            QBLThreadGuard guard(m_items);
            auto it = (*m_items).begin();
            while (it != (*m_items).end() && *it != item) ++it;
            // Without a count left, there are as many calls of get() under way as items.
            if (it == (*m_items).end() || !m_available.tryWait()) return false;
            (*m_items).erase(it);
        }
        if (m_free) m_free->post();
        return true;
    }

    /// put() in two steps, for callers that look at something between the two: waits for room,
    /// which is then kept for the caller until putReserved() or release().
    /// @return false when the queue stayed full.
    [[nodiscard]] bool reserve(unsigned long timeout) {
        return !m_free || m_free->boundedWait(timeout);
    }
    /// Puts an item into the room that reserve() has kept; on failure the room is given back.
    /// @throws as put()
    void putReserved(const T& item) { insertReserved(item, false); }
    /// Gives the room back. Called without reserve(), it lets one waiting caller of reserve() or
    /// put() go on, into a queue that may then hold one item more than its capacity.
    void release() {
        if (m_free) m_free->post();
    }

private:
    static constexpr unsigned int kMostSpares = 64;

    bool add(T& item, unsigned long timeout, bool first) {
        if (!reserve(timeout)) return false;
        insertReserved(item, first);
        return true;
    }
    void insertReserved(const T& item, bool first) {
        try {
            QBLThreadGuard guard(m_items);
            QBLList<T>& items = *m_items;
            insert(first ? items.begin() : items.end(), item);
            try {
                m_available.post();
            } catch (...) {
                first ? items.pop_front() : items.pop_back();
                throw;
            }
        } catch (...) {
            release();
            throw;
        }
    }

    // Items and their removal mostly reuse a node, so that no memory goes to and fro between the
    // threads that put and those that get. A kept node is emptied, which must not fail once its
    // item has been copied.
    static constexpr bool kKeepsNodes =
        std::is_nothrow_default_constructible_v<T> && std::is_nothrow_move_assignable_v<T>;
    void insert(QBLListIterator<T> position, const T& item) QBL_REQUIRES(m_items) {
        if (m_spares.empty()) {
            (*m_items).insert(position, item);
        } else {
            m_spares.front() = item;
            (*m_items).splice(position, m_spares, m_spares.begin());
        }
    }
    void removeFront() QBL_REQUIRES(m_items) {
        if (!kKeepsNodes || m_spares.size() == kMostSpares || (*m_items).empty()) {
            (*m_items).pop_front();
        } else {
            T& kept = (*m_items).front();
            kept = T();
            m_spares.splice(m_spares.end(), *m_items, (*m_items).begin());
        }
    }

    QBLThreadMonitor<QBLThreadMutex, QBLList<T>> m_items;
    QBLThreadSemaphore m_available;            // posted once per item
    std::optional<QBLThreadSemaphore> m_free;  // none when unbounded
    QBLList<T> m_spares QBL_GUARDED_BY(m_items);
};

#endif
