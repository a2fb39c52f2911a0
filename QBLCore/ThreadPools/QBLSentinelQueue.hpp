#ifndef QBLCORE_THREADPOOLS_QBLSENTINELQUEUE_HPP
#define QBLCORE_THREADPOOLS_QBLSENTINELQUEUE_HPP

#include <optional>
#include <type_traits>

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/Frame/QBLThreadMonitor.hpp"
#include "QBLCore/Threads/QBLMilliseconds.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"

// m_available counts the items and the nulls of wake() that no get() has claimed yet. The count
// changes only under the mutex, so it needs no locked instructions of its own. A put() inserts the
// item and then offers it: this raises the count, or hands a claim to a thread that waits. A get()
// claims, and then takes what it has claimed. It returns a null only if there is no item, so items
// come out before nulls.
//   waits       A get() that finds the count at 0 enlists, leaves the mutex and waits for a claim.
//               If its time runs out or its thread is cancelled, it leaves the list of waiting
//               threads under the mutex. If it was handed a claim at the last moment, it uses the
//               claim, or offers it again.
//   withdraw()  removes an item and lowers the count by 1. It fails if the count is 0: then a call
//               of get() is in progress for each item, and one of these calls takes this item.
//   m_free      counts the room of a bounded queue. reserve() lowers this count. A get() that finds
//               an item, withdraw() and release() raise it.
//   m_spares    up to 64 nodes of removed items, for new items; guarded by the mutex.
// An operation that fails undoes its changes, so that both counts stay correct.
//
// The mutex makes everything that a thread wrote before put() visible to the thread that gets the
// item. A get() that may not wait reads the count without the mutex first; this is only a hint.
// TavSemaphoreRecord.hpp explains the count, and TavBoundedWait.cpp the waits. QBLSentinelQueueTest
// tests failures and waits, and QBLThreadPoolTest the counts, also with x64-tsan.

/// A first-in first-out queue. get() waits for an item. If the queue is bounded, put() waits for
/// room. A wait ends as soon as there is an item or room, or when its time runs out.
///
/// T must be default-constructible and copyable. The library keeps pointers in its queues.
///
/// Threads: any thread may call any operation. No thread may still wait when the queue is
/// destroyed.
template <class T>
class QBLSentinelQueue {
public:
    /// @param capacity  maximum number of items, at most SEM_VALUE_MAX; 0 means unbounded
    /// @throws QBLOutOfMemoryError, QBLThreadResourceError
    explicit QBLSentinelQueue(unsigned long capacity = 0) : m_available(0) {
        if (capacity > 0) m_free.emplace(capacity);
    }
    QBLSentinelQueue(const QBLSentinelQueue&) = delete;
    QBLSentinelQueue& operator=(const QBLSentinelQueue&) = delete;

    /// @param timeout  milliseconds to wait for room
    /// @return false if the queue stayed full. The queue then has no copy of the item.
    /// @throws std::bad_alloc, QBLThreadResourceError; these errors do not change the queue
    [[nodiscard]] bool put(T& item, unsigned long timeout) { return add(item, timeout, false); }
    [[nodiscard]] bool put(T& item, QBLMilliseconds timeout) { return put(item, timeout.count()); }
    /// The same for constants and temporary objects.
    [[nodiscard]] bool put(const T& item, unsigned long timeout) {
        return add(item, timeout, false);
    }
    [[nodiscard]] bool put(const T& item, QBLMilliseconds timeout) {
        return put(item, timeout.count());
    }

    /// Works as put(), but the item comes out before the items that are already in the queue.
    [[nodiscard]] bool putFirst(T& item, unsigned long timeout) { return add(item, timeout, true); }
    [[nodiscard]] bool putFirst(T& item, QBLMilliseconds timeout) {
        return putFirst(item, timeout.count());
    }

    [[nodiscard]] bool putFirst(const T& item, unsigned long timeout) {
        return add(item, timeout, true);
    }
    [[nodiscard]] bool putFirst(const T& item, QBLMilliseconds timeout) {
        return putFirst(item, timeout.count());
    }

    /// @param item  receives the first item, or a null from wake()
    /// @param timeout  milliseconds to wait for an item
    /// @return false, without a change of `item`, if the time ran out
    /// @throws the exceptions of copying an item; they do not change the queue
    [[nodiscard]] bool get(T& item, unsigned long timeout) {
        const bool mayWait = timeout != 0;
        if (!mayWait && !m_available.isReady()) return false;
        bool taken = false;
        if (!takeNow(item, mayWait, taken) && !(mayWait && takeLater(item, timeout, taken)))
            return false;
        if (taken && m_free) m_free->post();
        return true;
    }
    [[nodiscard]] bool get(T& item, QBLMilliseconds timeout) { return get(item, timeout.count()); }

    /// Makes one get() return a null item when the queue has no other items. This needs no memory
    /// and no room, so it can always end the wait of a thread.
    void wake() {
        QBLThreadGuard guard(m_items);
        m_available.offer();
    }

    /// Removes an item that no get() has taken yet.
    /// @return false if the item is no longer in the queue, or a get() in progress will take it.
    [[nodiscard]] bool withdraw(const T& item) {
        {
            QBLThreadGuard guard(m_items);
            const auto it = find(item);
            // If the count is 0, a call of get() is in progress for each item.
            if (it == (*m_items).end() || !m_available.claim()) return false;
            (*m_items).erase(it);
        }
        if (m_free) m_free->post();
        return true;
    }

    /// The first step of put(), for callers that check something between the two steps. Waits for
    /// room, and keeps this room for the caller until putReserved() or release().
    /// @return false if the queue stayed full.
    [[nodiscard]] bool reserve(unsigned long timeout) {
        return !m_free || m_free->boundedWait(timeout);
    }
    [[nodiscard]] bool reserve(QBLMilliseconds timeout) { return reserve(timeout.count()); }
    /// Puts an item into the room that reserve() has kept. Gives the room back on failure.
    /// @throws the same exceptions as put()
    void putReserved(const T& item) { insertReserved(item, false); }
    /// Gives the room back. Without an earlier reserve(), lets one waiting reserve() or put()
    /// continue, and the queue may then hold one item more than its capacity.
    void release() {
        if (m_free) m_free->post();
    }

private:
    friend class QBLThreadPoolVariable;

    static constexpr unsigned int kMostSpares = 64;

    // The variable pool calls only the next three operations of its queue, and only while it holds
    // its own mutex. So these operations use neither the queue's mutex nor its counts.
    void putUnlocked(const T& item) QBL_NO_THREAD_SAFETY_ANALYSIS {
        insert((*m_items).end(), item);
    }
    bool getUnlocked(T& item) QBL_NO_THREAD_SAFETY_ANALYSIS {
        if ((*m_items).empty()) return false;
        item = (*m_items).front();
        removeFront();
        return true;
    }
    bool withdrawUnlocked(const T& item) QBL_NO_THREAD_SAFETY_ANALYSIS {
        const auto it = find(item);
        if (it == (*m_items).end()) return false;
        (*m_items).erase(it);
        return true;
    }

    // Both store in `taken` whether the thread got an item, and not a null.
    // takeNow()    enlists the thread if the count is 0 and it may wait.
    // takeLater()  requires that the thread has enlisted. A cancellation may end its wait.
    bool takeNow(T& item, bool mayWait, bool& taken) {
        QBLThreadGuard guard(m_items);
        if (!(mayWait ? m_available.claimOrEnlist() : m_available.claim())) return false;
        taken = takeClaimed(item);
        return true;
    }
    bool takeLater(T& item, unsigned long timeout, bool& taken) {
        bool posted = false;
        try {
            posted = m_available.boundedWait(timeout);
        } catch (...) {
            QBLThreadGuard guard(m_items);
            if (m_available.delist()) m_available.offer();
            throw;
        }
        QBLThreadGuard guard(m_items);
        if (!posted && !m_available.delist()) return false;
        taken = takeClaimed(item);
        return true;
    }
    bool takeClaimed(T& item) QBL_REQUIRES(m_items) {
        try {
            const bool taken = !(*m_items).empty();
            item = taken ? (*m_items).front() : T();
            removeFront();
            return taken;
        } catch (...) {
            m_available.offer();
            throw;
        }
    }

    bool add(const T& item, unsigned long timeout, bool first) {
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
                m_available.offer();
            } catch (...) {
                first ? items.pop_front() : items.pop_back();
                throw;
            }
        } catch (...) {
            release();
            throw;
        }
    }

    QBLListIterator<T> find(const T& item) QBL_REQUIRES(m_items) {
        auto it = (*m_items).begin();
        while (it != (*m_items).end() && *it != item) ++it;
        return it;
    }

    // New items mostly reuse the nodes of removed items, so that no memory moves between threads
    // that put items and threads that get items. The item in a kept node is reset to T(). This must
    // not fail, because the item has already been copied.
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
    QBLThreadSemaphore m_available;            // changes under the mutex of m_items
    std::optional<QBLThreadSemaphore> m_free;  // empty if unbounded
    QBLList<T> m_spares QBL_GUARDED_BY(m_items);
};

#endif
