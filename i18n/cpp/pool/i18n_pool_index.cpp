// The index of a bucket is a table of slots with linear probing. It begins with 8 slots, of which
// at most 7/8 are used. Only a thread that holds the bucket's lock changes it. Any thread may read
// it at any time.
//
// While no thread holds the lock, each entry of the bucket is in one slot of the current table, and
// no slot from its home slot up to that slot is free. While a thread holds the lock, this may not
// be true. removeIf() retires entries whose slots are still in the table, then clears all slots,
// and then fills them again. grow() switches to an empty table, which its caller then fills. During
// these changes, a reader without the lock may miss entries, find retired entries, or read the
// previous table. That is harmless:
//   - After a miss the reader calls acquireLocked(), which searches again under the lock.
//   - The reader pins an entry that it finds and then compares it (i18n_pool_entry.hpp). Before
//     that, it reads only the word refCount of the entry.
//   - Entries and tables are never freed. A slot is written in one piece, so it holds null or the
//     address of an entry. After a table has been replaced, it never changes again.
//   - A free slot ends each search, and 1/8 of the slots is free at any time.
//
// Memory order: grow() sets all slots of a table to null and then stores the table with release;
// find() loads the table with acquire. insert() stores the slot with release, and find() loads it
// with acquire, so that find() can read refCount. pin() makes the other members of the entry
// visible. clear() stores null with relaxed order: if a reader sees the null early or late, one of
// the cases above applies. A thread that holds the lock loads the table with relaxed order, because
// the table changes only under that lock.
//
// grow() changes nothing before it has the memory. The head of a table has the address of the
// previous table, so that leak checkers find the previous table.
//
// Tests: a wrong search shows as a text that is in the pool twice or is never found. These tests
// detect it: I18NPooledStringTest.DumpsByBucketsAndPurgesUnheldTexts,
// ThreadsAcquireReleasePurgeDumpAndStop (x64-tsan, x86-asan) and
// FailedAllocationLeavesThePoolUnchanged, which makes each growth fail in turn. No test detects a
// weaker order of the table or of a slot, and the thread sanitizer does not either. So do not rely
// on tests when you change these orders. I18NPooledStringBench shows the cost of a search.
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
