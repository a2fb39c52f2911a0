#ifndef I18N_CPP_STRING_I18N_BLOCK_HPP
#define I18N_CPP_STRING_I18N_BLOCK_HPP

#include <cstdint>

#include "i18n/cpp/i18n_allocator.h"

/// A block of memory from a caller's allocator, or from realloc(3) if there is no allocator. The
/// destructor frees the block unless release() has been called.
class I18NBlock {
public:
    /// @param block  a block of this allocator to own; null to start without a block
    explicit I18NBlock(I18NStringAllocator from = nullptr, void* of = nullptr,
                       char* block = nullptr)
        : m_allocator(from), m_pContext(of), m_pBlock(block) {}
    I18NBlock(I18NBlock&& other) noexcept
        : I18NBlock(other.m_allocator, other.m_pContext, other.release()) {}
    I18NBlock& operator=(const I18NBlock&) = delete;
    ~I18NBlock() { free(m_allocator, m_pContext, m_pBlock); }

    /// @param size  above 0
    /// @throws QBLOutOfMemoryError if memory is exhausted or the size does not fit an int; the
    ///     object keeps its block
    void resize(std::int64_t size) { resize(m_allocator, m_pContext, m_pBlock, size); }
    char* get() const { return m_pBlock; }
    char* release() {
        char* const block = m_pBlock;
        m_pBlock = nullptr;
        return block;
    }
    I18NStringAllocator allocator() const { return m_allocator; }
    void* context() const { return m_pContext; }

    /// Resizes a block that the caller owns. An allocator that fails may still have moved the
    /// block; `block` then has the new address.
    static void resize(I18NStringAllocator from, void* of, char*& block, std::int64_t size);
    /// Does nothing for null. Exceptions of the allocator do not leave this function.
    static void free(I18NStringAllocator from, void* of, void* block);

private:
    I18NStringAllocator m_allocator;
    void* m_pContext;
    char* m_pBlock;
};

#endif
