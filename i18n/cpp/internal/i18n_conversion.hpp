#ifndef I18N_CPP_INTERNAL_I18N_CONVERSION_HPP
#define I18N_CPP_INTERNAL_I18N_CONVERSION_HPP

#include <unicode/ucnv.h>

#include <cstddef>
#include <cstdint>

#include "i18n/cpp/i18n_allocator.h"

/// A block for a caller, from the caller's allocator or, without one, from realloc(3). Given back
/// unless it is released.
class I18NBlock {
public:
    I18NBlock(I18NStringAllocator allocator, void* context)
        : m_allocator(allocator), m_pContext(context), m_pBlock(nullptr) {}
    ~I18NBlock();
    I18NBlock(const I18NBlock&) = delete;
    I18NBlock& operator=(const I18NBlock&) = delete;

    /// @param size  above 0
    /// @throws QBLOutOfMemoryError also for what does not fit an int; the block stays.
    void resize(std::int64_t size);
    char* get() const { return m_pBlock; }
    char* release();

private:
    I18NStringAllocator m_allocator;
    void* m_pContext;
    char* m_pBlock;
};

/// ucnv_fromUnicode and ucnv_toUnicode for UTF-16 at any address, given as bytes: at and source
/// move on as theirs do.
UErrorCode i18nFromUnicode(UConverter* converter, char*& at, char* limit, const char*& source,
                           const char* end, bool flush);
UErrorCode i18nToUnicode(UConverter* converter, char*& at, char* limit, const char*& source,
                         const char* end, bool flush);

/// Bytes in front of the first unit of so many zero bytes, at any address.
std::size_t i18nBytesBeforeNull(const char* text, int nullSize);
/// Whether there is such a unit here.
bool i18nIsNull(const char* unit, int nullSize);

#endif
