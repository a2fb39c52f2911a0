#ifndef I18N_CPP_CONVERTER_I18N_ICU_CALLS_HPP
#define I18N_CPP_CONVERTER_I18N_ICU_CALLS_HPP

#include <unicode/ucnv.h>

#include <cstddef>

/// These functions call ucnv_fromUnicode() and ucnv_toUnicode() for UTF-16 at any address, given as
/// bytes. Like the ICU functions, they advance `at` and `source`.
UErrorCode i18nFromUnicode(UConverter* converter, char*& at, char* limit, const char*& source,
                           const char* end, bool flush);
UErrorCode i18nToUnicode(UConverter* converter, char*& at, char* limit, const char*& source,
                         const char* end, bool flush);

/// Returns the number of bytes before the first unit of `nullSize` zero bytes; the text may have
/// any address.
std::size_t i18nBytesBeforeNull(const char* text, int nullSize);
/// Returns true if the unit has only zero bytes.
bool i18nIsNull(const char* unit, int nullSize);

#endif
