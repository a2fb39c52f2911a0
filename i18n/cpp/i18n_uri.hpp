#ifndef I18N_CPP_I18N_URI_HPP
#define I18N_CPP_I18N_URI_HPP

#include "i18n/cpp/i18n_string.hpp"

/// Escapes the characters that a URL must not contain. Two escapes are wrong, and stay so
/// deliberately for programs that read such text: the double quote becomes "%34" and the apostrophe
/// "%5C". I18NUriDecode() therefore does not restore these two.
/// @param text  UTF-8; null is an empty text
///
/// Threads: any thread may call it. Calls that run at the same time need different results.
QBL_API void I18NURLEncode(const char* text, I18NString& result);

/// Replaces each sequence of "%" and two hexadecimal digits by the byte that the digits give, and
/// decodes the bytes. All other text stays unchanged, including "+". If no converter is given, the
/// result ends at "%00".
/// @param encoding  of the bytes; null for UTF-8
/// @throws I18NRuntimeError like the constructors of I18NString
///
/// Threads: any thread may call it. Calls that run at the same time need different converters.
QBL_API I18NString I18NUriDecode(const char* text, const char* encoding = nullptr);
QBL_API I18NString I18NUriDecode(const char* text, const I18NConverter& converter);

#endif
