#ifndef I18N_CPP_I18N_URI_HPP
#define I18N_CPP_I18N_URI_HPP

#include "i18n/cpp/i18n_string.hpp"

/// Escapes the characters that a URL must not hold. Two of them get the escape of another one,
/// which is kept so deliberately for those who read such text: the double quote becomes "%34", the
/// apostrophe "%5C". So I18NUriDecode() does not give everything back.
/// @param text  UTF-8; null is an empty text
///
/// Threads: any thread; a result, and a converter, belongs to one call at a time.
QBL_API void I18NURLEncode(const char* text, I18NString& result);

/// Replaces each "%" and two hexadecimal digits by the byte that they tell, and decodes the bytes.
/// What is no such escape stays, as does "+". A text given without a converter ends at "%00".
/// @param encoding  of the bytes; null for UTF-8
/// @throws I18NRuntimeError as the constructors of I18NString
///
/// Threads: as above.
QBL_API I18NString I18NUriDecode(const char* text, const char* encoding = nullptr);
QBL_API I18NString I18NUriDecode(const char* text, const I18NConverter& converter);

#endif
