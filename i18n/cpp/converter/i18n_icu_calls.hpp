#ifndef I18N_CPP_CONVERTER_I18N_ICU_CALLS_HPP
#define I18N_CPP_CONVERTER_I18N_ICU_CALLS_HPP

#include <unicode/ucnv.h>

#include <cstddef>

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
