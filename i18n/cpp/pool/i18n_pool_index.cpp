// The index of a bucket is a table of slots with linear probing: 8 slots at first, and at most 7/8
// of them taken. The holder of the bucket's lock alone changes it. Anybody reads it at any time.
//
// While nobody holds the lock, each entry of the bucket is in one slot of the current table, and no
// slot between its home and that one is free. While somebody does, this may not hold: removeIf()
// has retired entries whose slots are still there, then clears all slots and fills them again;
// grow() goes over to an empty table, which is filled next. A reader without the lock then misses
// entries, or meets entries that are gone, or reads the table before. That is harmless:
//   - A miss sends it to acquireLocked(), which looks again under the lock.
//   - What it finds it pins and compares (i18n_pool_entry.hpp). It reads nothing else before that.
//   - Entries and tables are never freed. A slot is written in one piece, so it has null or the
//     address of an entry. A table that another has followed never changes again.
//   - A free slot ends each search, and 1/8 of them is free at any time.
//
// Memory order: grow() stores the table with release, after its slots are null; find() acquires it.
// insert() stores the slot with release, and find() acquires it, so that the word of the entry can
// be read; what else the entry has comes with its pin(). clear() stores null relaxed: whether a
// reader sees it early or late is one of the cases above. Loads of the table by the holder of the
// lock are relaxed, since all its changes were made under that lock.
//
// grow() changes nothing before it has the memory. A table's head has the address of the one
// before, so that leak checkers find those.
//
// A wrong search shows as a text that is in the pool twice, or never found:
// I18NPooledStringTest.DumpsByBucketsAndPurgesWhatNobodyHolds,
// ThreadsAcquireReleasePurgeDumpAndStop (x64-tsan, x86-asan) and
// AFailedAllocationLeavesThePoolAsItWas, which makes each growth fail in turn. A weaker order of
// the table or of a slot shows in none of them, the thread sanitizer included: change these by
// reasoning only. I18NPooledStringBench shows what a search costs.
#include "i18n/cpp/pool/i18n_pool_index.hpp"

#include <new>

namespace {

constexpr unsigned kFirstBits = 3;
constexpr unsigned kMostBits = 30;
constexpr std::size_t kHead = 64;  // before the slots; the table that these follow is there

}  // namespace

void I18NPoolIndex::grow() {
    const Table table(m_pTable.load(std::memory_order_relaxed));
    const unsigned bits = table.slots() != nullptr ? table.bits() + 1 : kFirstBits;
    if (bits > kMostBits || ((SIZE_MAX - kHead) / sizeof(Slot)) >> bits == 0)
        throw std::bad_alloc();
    void* const memory =
        ::operator new (kHead + (sizeof(Slot) << bits), std::align_val_t{kHead}, std::nothrow);
    if (memory == nullptr) throw std::bad_alloc();
    new (memory) Slot*(table.slots());
    char* const slots = static_cast<char*>(memory) + kHead;
    for (std::size_t i = 0; i < std::size_t{1} << bits; ++i)
        new (slots + i * sizeof(Slot)) Slot(nullptr);
    m_pTable.store(slots + bits, std::memory_order_release);
}

void I18NPoolIndex::clear() noexcept {
    const Table table(m_pTable.load(std::memory_order_relaxed));
    if (table.slots() == nullptr) return;
    for (std::uint32_t i = 0; i < table.capacity(); ++i)
        table.slots()[i].store(nullptr, std::memory_order_relaxed);
}
