#ifndef I18N_CPP_POOL_I18N_POOL_INDEX_HPP
#define I18N_CPP_POOL_I18N_POOL_INDEX_HPP

#include <atomic>
#include <cstdint>

#include "i18n/cpp/pool/i18n_pool_entry.hpp"

/// Finds the entries of a bucket by their hash: a table with open addressing. Whoever changes it
/// holds the bucket's lock. It may be read without, while it is changed too: it then gives wrong
/// entries, or none, but never what is no entry. So a table is kept when a larger one follows.
/// All zeros are an index without room.
class I18NPoolIndex {
public:
    using Entry = I18NPooledStringEntry;

    bool hasRoomFor(unsigned entries) const {
        const Table table(m_pTable.load(std::memory_order_relaxed));
        return table.slots() != nullptr && entries <= table.capacity() / 8 * 7;
    }
    /// Goes over to an empty table of twice the size.
    /// @throws std::bad_alloc
    void grow();
    /// Requires: room.
    void insert(Entry* entry) noexcept {
        const Table table(m_pTable.load(std::memory_order_relaxed));
        const std::uint32_t spread = spreadOf(entry->hashCode);
        Slot* slot = table.home(spread);
        while (slot->load(std::memory_order_relaxed) != nullptr) slot = table.after(slot);
        slot->store(reinterpret_cast<char*>(entry) + tagOf(spread), std::memory_order_release);
    }
    void clear() noexcept;
    /// Calls a body with each entry of a hash, and few others, until one gives true.
    /// @return that entry, or null
    template <class Body>
    Entry* find(std::uint32_t hash, Body body) const {
        const Table table(m_pTable.load(std::memory_order_acquire));
        if (table.slots() == nullptr) return nullptr;
        const std::uint32_t spread = spreadOf(hash);
        const Slot* slot = table.home(spread);
        // There are free slots. Who reads while they move finds one in the next round.
        for (;; slot = table.after(slot)) {
            char* const tagged = slot->load(std::memory_order_acquire);
            if (tagged == nullptr) return nullptr;
            if ((reinterpret_cast<std::uintptr_t>(tagged) & kTag) != tagOf(spread)) continue;
            auto* const entry = reinterpret_cast<Entry*>(tagged - tagOf(spread));
            if (body(*entry)) return entry;
        }
    }

private:
    /// The address of an entry, with some bits of its hash in those that are zero there: few
    /// others need to be looked at. Null is a free slot.
    using Slot = std::atomic<char*>;
    static constexpr std::uintptr_t kTag = 63;
    static_assert(alignof(Entry) > kTag, "the tag is in the low bits of an entry's address");

    // The multiplier is 2^32 by the golden ratio, which spreads also what differs little. The
    // highest bits choose the slot.
    static std::uint32_t spreadOf(std::uint32_t hash) { return (hash ^ hash >> 16) * 0x9E3779B1U; }
    static std::uintptr_t tagOf(std::uint32_t spread) { return spread >> 2 & kTag; }

    /// Slots, and how many, in a word: their address is a multiple of 64, and the bits below are
    /// the logarithm of their number.
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
