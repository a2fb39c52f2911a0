#ifndef I18N_CPP_INTERNAL_I18N_BYTES_HPP
#define I18N_CPP_INTERNAL_I18N_BYTES_HPP

#include "i18n/cpp/internal/i18n_text_view.hpp"

/// Memory from a string's allocator, or from malloc.
class I18NMemory {
public:
    I18NMemory(I18NStringAllocator from, void* of) : m_allocator(from), m_context(of) {}
    /// @throws QBLOutOfMemoryError
    char* allocate(char* block, int size) const;
    void release(void* block) const noexcept;
    I18NStringAllocator allocator() const { return m_allocator; }
    void* context() const { return m_context; }

private:
    I18NStringAllocator m_allocator;
    void* m_context;
};

/// A text in an encoding, in a block of its own, a zero of the encoding's width behind it.
struct I18NBytes {
    char* block;
    int length;  // the zero included
    int zero;    // bytes of that
};

/// @throws I18NRuntimeError, QBLOutOfMemoryError
I18NBytes i18nToBytes(const I18NTextView& text, const char* encoding, const I18NMemory& memory);
I18NBytes i18nToBytes(const I18NTextView& text, const I18NConverter& converter,
                      const I18NMemory& memory);

#endif
