// The index of a bucket is a table of slots with linear probing. It begins with 8 slots, of which
// at most 7/8 are used. Only a thread that holds the bucket's lock changes it. Any thread may read
// it at any time.
//
// While no thread holds the lock, each entry of the bucket is in one slot of the current table, and
// no slot between its home slot and this one is free. While a thread holds the lock, this may not
// hold. removeIf() has retired entries whose slots are still there, then clears all slots and fills
// them again. grow() switches to an empty table, which is filled next. A reader without the lock
// may then miss entries, meet entries that are gone, or read the previous table. That is harmless:
//   - After a miss the reader calls acquireLocked(), which searches again under the lock.
//   - The reader pins and compares an entry that it finds (i18n_pool_entry.hpp), and reads nothing
//     else of it before that.
//   - Entries and tables are never freed. A slot is written in one piece, so it holds null or the
//     address of an entry. A table that another one has replaced never changes again.
//   - A free slot ends each search, and 1/8 of the slots is free at any time.
//
// Memory order: grow() stores the table with release, after its slots are null; find() acquires it.
// insert() stores the slot with release, and find() acquires it, so that the word of the entry can
// be read. pin() makes the rest of the entry visible. clear() stores null relaxed: if a reader sees
// it early or late, one of the cases above applies. The holder of the lock loads the table relaxed,
// since all changes of it were made under that lock.
//
// grow() changes nothing before it has the memory. The head of a table has the address of the
// previous table, so that leak checkers find that one.
//
// Tests: a wrong search shows as a text that is in the pool twice or is never found. These detect
// it: I18NPooledStringTest.DumpsByBucketsAndPurgesUnheldTexts,
// ThreadsAcquireReleasePurgeDumpAndStop (x64-tsan, x86-asan) and
// FailedAllocationLeavesThePoolUnchanged, which makes each growth fail in turn. None of them
// detects a weaker order of the table or of a slot, and the thread sanitizer does not either:
// change these by reasoning only. I18NPooledStringBench shows the cost of a search.
#include "i18n/cpp/pool/i18n_pool_index.hpp"

#include <new>

namespace {

constexpr unsigned kFirstBits = 3;
constexpr unsigned kMostBits = 30;
constexpr std::size_t kHead = 64;  // before the slots; holds the address of the previous table

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
