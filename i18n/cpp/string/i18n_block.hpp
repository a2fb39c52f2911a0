#ifndef I18N_CPP_STRING_I18N_BLOCK_HPP
#define I18N_CPP_STRING_I18N_BLOCK_HPP

#include <cstdint>

#include "i18n/cpp/i18n_allocator.h"

/// A block of memory from a caller's allocator or, without one, from realloc(3). Given back unless
/// it is released.
class I18NBlock {
public:
    /// @param block  to own, from there; null for none yet
    explicit I18NBlock(I18NStringAllocator from = nullptr, void* of = nullptr,
                       char* block = nullptr)
        : m_allocator(from), m_pContext(of), m_pBlock(block) {}
    I18NBlock(I18NBlock&& other) noexcept
        : I18NBlock(other.m_allocator, other.m_pContext, other.release()) {}
    I18NBlock& operator=(const I18NBlock&) = delete;
    ~I18NBlock() { free(m_allocator, m_pContext, m_pBlock); }

    /// @param size  above 0
    /// @throws QBLOutOfMemoryError also for what does not fit an int; the block stays.
    void resize(std::int64_t size) { resize(m_allocator, m_pContext, m_pBlock, size); }
    char* get() const { return m_pBlock; }
    char* release() {
        char* const block = m_pBlock;
        m_pBlock = nullptr;
        return block;
    }
    I18NStringAllocator allocator() const { return m_allocator; }
    void* context() const { return m_pContext; }

    /// The same for a block that somebody else keeps. An allocator that fails may have moved it all
    /// the same.
    static void resize(I18NStringAllocator from, void* of, char*& block, std::int64_t size);
    /// Null is passed over; nothing leaves an allocator that throws.
    static void free(I18NStringAllocator from, void* of, void* block);

private:
    I18NStringAllocator m_allocator;
    void* m_pContext;
    char* m_pBlock;
};

#endif
