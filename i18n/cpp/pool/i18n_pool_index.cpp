#include "i18n/cpp/pool/i18n_pool_index.hpp"

#include <new>

namespace {

constexpr unsigned kFirstBits = 3;
constexpr unsigned kMostBits = 30;
constexpr std::size_t kHead = 64;  // before the slots; the table that these follow is there

}  // namespace

void I18NPoolIndex::grow() {
    const Table table(m_table.load(std::memory_order_relaxed));
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
    m_table.store(slots + bits, std::memory_order_release);
}

void I18NPoolIndex::clear() noexcept {
    const Table table(m_table.load(std::memory_order_relaxed));
    if (table.slots() == nullptr) return;
    for (std::uint32_t i = 0; i < table.capacity(); ++i)
        table.slots()[i].store(nullptr, std::memory_order_relaxed);
}
