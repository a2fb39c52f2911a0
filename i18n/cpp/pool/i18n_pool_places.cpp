#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <new>
#include <utility>

#include "QBLCore/Base/QBLImmortal.hpp"
#include "QBLCore/Base/QBLSurplus.hpp"
#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Threads/QBLThreadCriticalSection.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "i18n/cpp/pool/i18n_pool_entry.hpp"

namespace {

using Entry = I18NPooledStringEntry;

constexpr std::size_t kPage = 4096;
constexpr std::size_t kBlock = 8 * kPage;  // size of a block in bytes, and its alignment
constexpr std::size_t kMostBlocks = 256;   // maximum of a region: 8 MiB
constexpr std::size_t kLargePage = 2 << 20;

/// The head of a block of places, at the beginning of the block. The lock of the places guards all
/// members.
struct Block {
    Block *previous, *next;  // in the list of blocks with room
    Entry* empty;            // the list of empty places that were used before
    unsigned fresh;          // all places from this number on are empty, too
    unsigned live;
    bool rested;  // no place has been taken since the last trim()

    static constexpr std::size_t kFirst = 64;
    static constexpr unsigned kPlaces = (kBlock - kFirst) / sizeof(Entry);

    Entry* places() {
        return reinterpret_cast<Entry*>(reinterpret_cast<unsigned char*>(this) + kFirst);
    }
    bool hasRoom() const { return live < kPlaces; }
    static Block* of(Entry* place) {
        const auto address = reinterpret_cast<std::uintptr_t>(place);
        return reinterpret_cast<Block*>(reinterpret_cast<unsigned char*>(place) - address % kBlock);
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
        block.rested = false;
        if (!block.hasRoom()) unlink(block);
        // Prefetches the next place and its link in the list, because they are rarely in the cache.
        const Entry* const next = block.empty != nullptr ? block.empty : place + 1;
        for (std::size_t at = 0; at < sizeof *next; at += 64)
            __builtin_prefetch(reinterpret_cast<const char*>(next) + at, 1);
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
        QBLThreadGuard guard(m_lock);
        const auto found = m_blocks.find(address - address % kBlock);
        if (found == m_blocks.end()) return nullptr;
        Block* const block = found->second;
        const std::uintptr_t offset = address - reinterpret_cast<std::uintptr_t>(block->places());
        if (offset % sizeof(Entry) != 0 || offset / sizeof(Entry) >= block->fresh) return nullptr;
        return block->places() + offset / sizeof(Entry);
    }
    void trim() {
        QBLThreadGuard guard(m_lock);
        for (const auto& [address, block] : m_blocks) {
            const bool rested = std::exchange(block->rested, block->live == 0);
            if (!rested || block->fresh == 0) continue;
            block->empty = nullptr;
            block->fresh = 0;
            // Keeps the page with the head. If the system refuses, the memory stays as it is.
            madvise(reinterpret_cast<unsigned char*>(block) + kPage, kBlock - kPage, MADV_DONTNEED);
        }
    }

private:
    void addBlock() QBL_REQUIRES(m_lock) {
        if (m_left == 0) addRegion();
        auto* const block = new (m_pRegion) Block();
        m_blocks.emplace(reinterpret_cast<std::uintptr_t>(block), block);
        m_pRegion += kBlock;
        --m_left;
        for (unsigned i = 0; i < Block::kPlaces; ++i)
            new (&block->places()[i].refCount) std::atomic<std::uint32_t>(0);
        link(*block);
    }
    // Regions grow with the pool. Large regions use large pages, because places are read in any
    // order.
    void addRegion() QBL_REQUIRES(m_lock) {
        std::size_t blocks = std::clamp<std::size_t>(m_blocks.size(), 1, kMostBlocks);
        void* memory = nullptr;
        for (;; blocks /= 2) {
            const std::size_t alignment = blocks * kBlock > kLargePage ? kLargePage : kBlock;
            if (blocks > 1 && !qblMayTakeSurplus(blocks * kBlock)) continue;
            memory = ::operator new (blocks* kBlock, std::align_val_t{alignment}, std::nothrow);
            if (memory != nullptr) break;
            if (blocks == 1) throw std::bad_alloc();
        }
        const std::size_t size = blocks * kBlock;
        if (size > kLargePage) madvise(memory, size, MADV_HUGEPAGE);
        m_pRegion = static_cast<unsigned char*>(memory);
        m_left = blocks;
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
    std::map<std::uintptr_t, Block*> m_blocks QBL_GUARDED_BY(m_lock);  // by address
    Block* m_pWithRoom QBL_GUARDED_BY(m_lock) = nullptr;
    unsigned char* m_pRegion QBL_GUARDED_BY(m_lock) = nullptr;  // memory for more blocks
    std::size_t m_left QBL_GUARDED_BY(m_lock) = 0;              // number of blocks that fit there
};

// Constructed when the library is loaded, so that give() never has to construct it, which could
// fail.
[[maybe_unused]] Places& g_places = qblImmortal<Places>();

}  // namespace

Entry* i18n_places::take() {
    QBL_ALLOC_TRY
    return qblImmortal<Places>().take();
    QBL_ALLOC_CATCH
}

void i18n_places::give(Entry* place) noexcept { qblImmortal<Places>().give(place); }

Entry* i18n_places::find(const I18NString& string) { return qblImmortal<Places>().find(string); }

void i18n_places::trim() noexcept { qblImmortal<Places>().trim(); }

// Usually the bytes are the same. If not, the bytes may still be another form of the same text.
bool I18NPooledStringEntry::holdsLong(const char* utf8, std::size_t length) {
    int size = 0;
    const char* const bytes = string().c_str(nullptr, &size);
    const bool same =
        static_cast<std::size_t>(size) == length + 1 && std::memcmp(bytes, utf8, length) == 0;
    return same || string() == utf8;
}

// No thread can pin the entry at this point.
void I18NPooledStringEntry::destroy() noexcept {
    string().~I18NString();
    refCount.store(0, std::memory_order_release);
    i18n_places::give(this);
}
