#ifndef I18N_CPP_CONVERTER_I18N_CONVERTER_ACCESS_HPP
#define I18N_CPP_CONVERTER_I18N_CONVERTER_ACCESS_HPP

#include "i18n/cpp/i18n_converter.hpp"

/// Gives access to the ICU converter inside an I18NConverter, for code that converts whole buffers.
class I18NConverterAccess {
public:
    static UConverter* icu(const I18NConverter& converter) { return converter.m_pConverter; }
};

/// I18NConverter::fromUnicode() for text that may contain NULs.
struct I18NCountedText {
    static void fromUnicode(const I18NConverter& converter, char** destination, int* size,
                            const char16_t* units, int length, I18NStringAllocator allocator,
                            void* context);
};

#endif
