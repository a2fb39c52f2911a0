#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <set>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Frame/internal/QBLImmortal.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "i18n/cpp/internal/i18n_pool_entry.hpp"

namespace {

using Entry = I18NPooledStringEntry;

constexpr std::size_t kPage = 4096;
constexpr std::size_t kBlock = 8 * kPage;  // bytes of a block, and its alignment

/// A block of places, at whose beginning this is. All under the lock of the places.
struct Block {
    Block *previous, *next;  // of those with room
    Entry* empty;            // places that were used
    unsigned fresh;          // places from here on are empty too
    unsigned live;

    static constexpr std::size_t kFirst = 64;
    static constexpr unsigned kPlaces = (kBlock - kFirst) / sizeof(Entry);

    Entry* places() {
        return reinterpret_cast<Entry*>(reinterpret_cast<unsigned char*>(this) + kFirst);
    }
    bool hasRoom() const { return live < kPlaces; }
    static Block* of(const void* in) {
        const auto address = reinterpret_cast<std::uintptr_t>(in);
        // NOLINTNEXTLINE(performance-no-int-to-ptr): found from an address by arithmetic
        return reinterpret_cast<Block*>(address - address % kBlock);
    }
};
static_assert(sizeof(Block) <= Block::kFirst, "a block's head stands before its places");

class Places {
public:
    Entry* take() {
        QBLThreadGuard guard(m_lock);
        if (m_pWithRoom == nullptr) addBlock();
        Block& block = *m_pWithRoom;
        Entry* const place = block.empty != nullptr ? block.empty : block.places() + block.fresh++;
        if (place == block.empty) block.empty = place->next;
        ++block.live;
        if (!block.hasRoom()) unlink(block);
        return place;
    }
    void give(Entry* place) {
        QBLThreadGuard guard(m_lock);
        Block& block = *Block::of(place);
        place->next = block.empty;
        block.empty = place;
        if (!block.hasRoom()) link(block);
        --block.live;
    }
    Entry* find(const I18NString& string) {
        const auto address = reinterpret_cast<std::uintptr_t>(&string) - offsetof(Entry, place);
        // NOLINTNEXTLINE(performance-no-int-to-ptr): found from an address by arithmetic
        Block* const block = Block::of(reinterpret_cast<const void*>(address));
        QBLThreadGuard guard(m_lock);
        if (m_blocks.count(block) == 0) return nullptr;
        const std::uintptr_t offset = address - reinterpret_cast<std::uintptr_t>(block->places());
        if (offset % sizeof(Entry) != 0 || offset / sizeof(Entry) >= block->fresh) return nullptr;
        return block->places() + offset / sizeof(Entry);
    }
    void trim() {
        QBLThreadGuard guard(m_lock);
        for (Block* block : m_blocks) {
            if (block->live != 0 || block->fresh == 0) continue;
            block->empty = nullptr;
            block->fresh = 0;
            // All but the page with the head. If it is refused the memory stays as it is.
            madvise(reinterpret_cast<unsigned char*>(block) + kPage, kBlock - kPage, MADV_DONTNEED);
        }
    }

private:
    void addBlock() QBL_REQUIRES(m_lock) {
        void* const memory = ::operator new (kBlock, std::align_val_t{kBlock}, std::nothrow);
        if (memory == nullptr) throw std::bad_alloc();
        auto* const block = new (memory) Block();
        try {
            m_blocks.insert(block);
        } catch (...) {
            ::operator delete (memory, std::align_val_t{kBlock});
            throw;
        }
        for (unsigned i = 0; i < Block::kPlaces; ++i)
            new (&block->places()[i].refCount) std::atomic<std::uint32_t>(0);
        link(*block);
    }
    void link(Block& block) QBL_REQUIRES(m_lock) {
        block.previous = nullptr;
        block.next = m_pWithRoom;
        if (m_pWithRoom != nullptr) m_pWithRoom->previous = &block;
        m_pWithRoom = &block;
    }
    void unlink(Block& block) QBL_REQUIRES(m_lock) {
        (block.previous != nullptr ? block.previous->next : m_pWithRoom) = block.next;
        if (block.next != nullptr) block.next->previous = block.previous;
    }

    QBLThreadCriticalSection m_lock{0};
    std::set<Block*> m_blocks QBL_GUARDED_BY(m_lock);
    Block* m_pWithRoom QBL_GUARDED_BY(m_lock) = nullptr;
};

}  // namespace

Entry* I18NPoolPlaces::take() {
    QBL_ALLOC_TRY
    return qblImmortal<Places>().take();
    QBL_ALLOC_CATCH
}

void I18NPoolPlaces::give(Entry* place) noexcept { qblImmortal<Places>().give(place); }

Entry* I18NPoolPlaces::find(const I18NString& string) { return qblImmortal<Places>().find(string); }

void I18NPoolPlaces::trim() noexcept { qblImmortal<Places>().trim(); }

// Mostly the bytes are the same. Else they may still be another form of the same text.
bool I18NPooledStringEntry::holdsLong(const char* utf8, std::size_t length) {
    int size = 0;
    const char* const bytes = string().c_str(nullptr, &size);
    const bool same =
        static_cast<std::size_t>(size) == length + 1 && std::memcmp(bytes, utf8, length) == 0;
    return same || string() == utf8;
}

// Nobody can pin the entry by now.
void I18NPooledStringEntry::destroy() noexcept {
    string().~I18NString();
    refCount.store(0, std::memory_order_release);
    I18NPoolPlaces::give(this);
}
