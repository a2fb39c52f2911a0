#ifndef I18N_CPP_INTERNAL_I18N_POOL_INDEX_HPP
#define I18N_CPP_INTERNAL_I18N_POOL_INDEX_HPP

#include <atomic>
#include <cstdint>

#include "i18n/cpp/internal/i18n_pool_entry.hpp"

/// Finds the entries of a bucket by their hash: a table with open addressing. Whoever changes it
/// holds the bucket's lock. It may be read without, while it is changed too: it then gives wrong
/// entries, or none, but never what is no entry. So a table is kept when a larger one follows.
/// All zeros are an index without room.
class I18NPoolIndex {
public:
    using Entry = I18NPooledStringEntry;

    bool hasRoomFor(unsigned entries) const {
        const Table table(m_table.load(std::memory_order_relaxed));
        return table.slots() != nullptr && entries <= table.capacity() / 3 * 2;
    }
    /// Goes over to an empty table of twice the size.
    /// @throws std::bad_alloc
    void grow();
    /// Requires: room.
    void insert(Entry* entry) noexcept {
        const Table table(m_table.load(std::memory_order_relaxed));
        Slot* slot = table.home(entry->hashCode);
        while (slot->entry.load(std::memory_order_relaxed) != nullptr) slot = table.after(slot);
        slot->hash.store(entry->hashCode, std::memory_order_relaxed);
        slot->entry.store(entry, std::memory_order_release);
    }
    void clear() noexcept;
    /// Calls a body with each entry of a hash until one gives true.
    /// @return that entry, or null
    template <class Body>
    Entry* find(std::uint32_t hash, Body body) const {
        const Table table(m_table.load(std::memory_order_acquire));
        if (table.slots() == nullptr) return nullptr;
        const Slot* slot = table.home(hash);
        // There are free slots, but for a reader without the lock not at each moment.
        for (std::uint32_t n = table.capacity(); n != 0; --n, slot = table.after(slot)) {
            Entry* const entry = slot->entry.load(std::memory_order_acquire);
            if (entry == nullptr) return nullptr;
            if (slot->hash.load(std::memory_order_relaxed) == hash && body(*entry)) return entry;
        }
        return nullptr;
    }

private:
    struct Slot {
        std::atomic<std::uint32_t> hash;
        std::atomic<Entry*> entry;
    };

    /// Slots, and how many, in a word: their address is a multiple of 64, and the bits below are
    /// the logarithm of their number.
    class Table {
    public:
        explicit Table(std::uintptr_t word) : m_word(word) {}
        unsigned bits() const { return m_word & 63; }
        // NOLINTNEXTLINE(performance-no-int-to-ptr): found from an address by arithmetic
        Slot* slots() const { return reinterpret_cast<Slot*>(m_word - bits()); }
        std::uint32_t capacity() const { return 1U << bits(); }
        // The multiplier is 2^32 by the golden ratio, which spreads also what differs little.
        Slot* home(std::uint32_t hash) const {
            return slots() + (hash * 0x9E3779B1U >> (32 - bits()));
        }
        Slot* after(const Slot* slot) const {
            return slots() + ((slot - slots() + 1) & static_cast<std::ptrdiff_t>(capacity() - 1));
        }

    private:
        std::uintptr_t m_word;
    };

    std::atomic<std::uintptr_t> m_table;
};

#endif
