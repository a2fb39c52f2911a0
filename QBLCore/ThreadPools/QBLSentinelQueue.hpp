#ifndef QBLCORE_THREADPOOLS_QBLSENTINELQUEUE_HPP
#define QBLCORE_THREADPOOLS_QBLSENTINELQUEUE_HPP

#include <optional>

#include "QBLCore/Frame/QBLList.hpp"
#include "QBLCore/Frame/QBLThreadMonitor.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"
#include "QBLCore/Threads/QBLThreadSemaphore.hpp"

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
    [[nodiscard]] bool get(T& item, unsigned long timeout) {
        if (!m_available.boundedWait(timeout)) return false;
        bool taken = false;
        {
            QBLThreadGuard guard(m_items);
            taken = !(*m_items).empty();
            item = taken ? (*m_items).front() : T();
            removeFront();
        }
        if (taken && m_free) m_free->post();
        return true;
    }

    /// Lets one get() return with a null item, after all the items that were put. It needs
    /// neither memory nor room, so it can always be called to end a waiting thread.
    void wake() { m_available.post(); }

    /// Takes an item back that nobody has got yet.
    /// @return false when it is not in the queue any more.
    [[nodiscard]] bool withdraw(const T& item) {
        if (!m_available.tryWait()) return false;
        {
            QBLThreadGuard guard(m_items);
            for (auto it = (*m_items).begin(); it != (*m_items).end(); ++it) {
                if (*it != item) continue;
                (*m_items).erase(it);
                if (m_free) m_free->post();
                return true;
            }
        }
        m_available.post();  // the count was for another's item
        return false;
    }

private:
    static constexpr unsigned int kMostSpares = 64;

    bool add(T& item, unsigned long timeout, bool first) {
        if (m_free && !m_free->boundedWait(timeout)) return false;
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
            if (m_free) m_free->post();
            throw;
        }
        return true;
    }

    // Items and their removal mostly reuse a node, so that no memory goes to and fro between the
    // threads that put and those that get.
    void insert(QBLListIterator<T> position, const T& item) QBL_REQUIRES(m_items) {
        if (m_spares.empty()) {
            (*m_items).insert(position, item);
        } else {
            m_spares.front() = item;
            (*m_items).splice(position, m_spares, m_spares.begin());
        }
    }
    void removeFront() QBL_REQUIRES(m_items) {
        if (m_spares.size() == kMostSpares || (*m_items).empty()) {
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
