#ifndef I18N_CPP_STRING_I18N_BYTES_HPP
#define I18N_CPP_STRING_I18N_BYTES_HPP

#include "i18n/cpp/string/i18n_block.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

/// A text in an encoding, a zero of the encoding's width behind it.
struct I18NBytes {
    I18NBlock block;
    int length;  // the zero included
    int zero;    // bytes of that
};

/// @param block  an empty one, to hold the bytes
/// @throws I18NRuntimeError, QBLOutOfMemoryError
I18NBytes i18nToBytes(const I18NTextView& text, const char* encoding, I18NBlock block);
I18NBytes i18nToBytes(const I18NTextView& text, const I18NConverter& converter, I18NBlock block);

#endif
