#ifndef I18N_CPP_STRING_I18N_BYTES_HPP
#define I18N_CPP_STRING_I18N_BYTES_HPP

#include "i18n/cpp/string/i18n_block.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

/// A text in an encoding, followed by a NUL of the encoding's width.
struct I18NBytes {
    I18NBlock block;
    int length;  // including the NUL
    int zero;    // size of the NUL
};

/// @param block  an empty block that receives the bytes
/// @throws I18NRuntimeError, QBLOutOfMemoryError
I18NBytes i18nToBytes(const I18NTextView& text, const char* encoding, I18NBlock block);
I18NBytes i18nToBytes(const I18NTextView& text, const I18NConverter& converter, I18NBlock block);

#endif
