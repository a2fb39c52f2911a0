#ifndef I18N_CPP_POOL_I18N_POOL_INDEX_HPP
#define I18N_CPP_POOL_I18N_POOL_INDEX_HPP

#include <atomic>
#include <cstdint>

#include "i18n/cpp/pool/i18n_pool_entry.hpp"

/// Finds the entries of a bucket by their hash: a table with open addressing. A thread that changes
/// the index must hold the bucket's lock. Any thread may read the index without the lock, even
/// while another thread changes it. Such a reader may miss entries or find wrong entries, but every
/// address that it finds is the address of an entry. Therefore an old table is kept when a larger
/// table replaces it. An index of zero bytes has no room for entries.
class I18NPoolIndex {
public:
    using Entry = I18NPooledStringEntry;

    bool hasRoomFor(unsigned entries) const {
        const Table table(m_pTable.load(std::memory_order_relaxed));
        return table.slots() != nullptr && entries <= table.capacity() / 8 * 7;
    }
    /// Switches to an empty table of twice the size; the first table has 8 slots.
    /// @throws std::bad_alloc
    void grow();
    /// Requires: the index has room for one more entry.
    void insert(Entry* entry) noexcept {
        const Table table(m_pTable.load(std::memory_order_relaxed));
        const std::uint32_t spread = spreadOf(entry->hashCode);
        Slot* slot = table.home(spread);
        while (slot->load(std::memory_order_relaxed) != nullptr) slot = table.after(slot);
        slot->store(reinterpret_cast<char*>(entry) + tagOf(spread), std::memory_order_release);
    }
    void clear() noexcept;
    /// Calls a body with each entry that has this hash, and with a few other entries, until the
    /// body returns true.
    /// @return the entry for which the body returned true, or null
    template <class Body>
    Entry* find(std::uint32_t hash, Body body) const {
        const Table table(m_pTable.load(std::memory_order_acquire));
        if (table.slots() == nullptr) return nullptr;
        const std::uint32_t spread = spreadOf(hash);
        const Slot* slot = table.home(spread);
        // The loop ends, because some slots are always free. If a reader misses them because other
        // threads change the table, it finds a free slot in its next pass over the table.
        for (;; slot = table.after(slot)) {
            char* const tagged = slot->load(std::memory_order_acquire);
            if (tagged == nullptr) return nullptr;
            if ((reinterpret_cast<std::uintptr_t>(tagged) & kTag) != tagOf(spread)) continue;
            auto* const entry = reinterpret_cast<Entry*>(tagged - tagOf(spread));
            if (body(*entry)) return entry;
        }
    }

private:
    /// The address of an entry, with some bits of its hash in the address bits that are always
    /// zero. So a search examines few entries with other hashes. Null is a free slot.
    using Slot = std::atomic<char*>;
    static constexpr std::uintptr_t kTag = 63;
    static_assert(alignof(Entry) > kTag, "the tag is in the low bits of an entry's address");

    // The multiplier is 2^32 divided by the golden ratio. It also spreads hashes that differ only a
    // little. The highest bits select the slot.
    static std::uint32_t spreadOf(std::uint32_t hash) { return (hash ^ hash >> 16) * 0x9E3779B1U; }
    static std::uintptr_t tagOf(std::uint32_t spread) { return spread >> 2 & kTag; }

    /// The address and the number of the slots in one word. The address is a multiple of 64, so the
    /// low six bits are free for the logarithm of the number.
    class Table {
    public:
        explicit Table(char* word) : m_pWord(word) {}
        unsigned bits() const { return reinterpret_cast<std::uintptr_t>(m_pWord) & 63; }
        Slot* slots() const { return reinterpret_cast<Slot*>(m_pWord - bits()); }
        std::uint32_t capacity() const { return 1U << bits(); }
        Slot* home(std::uint32_t spread) const { return slots() + (spread >> (32 - bits())); }
        Slot* after(const Slot* slot) const {
            return slots() + ((slot - slots() + 1) & static_cast<std::ptrdiff_t>(capacity() - 1));
        }

    private:
        char* m_pWord;
    };

    std::atomic<char*> m_pTable;
};

#endif
