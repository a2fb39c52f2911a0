#ifndef I18N_CPP_STRING_I18N_URL_ENCODING_HPP
#define I18N_CPP_STRING_I18N_URL_ENCODING_HPP

#include <string>
#include <string_view>

/// Appends a text and escapes the characters that a URL must not contain: the blank and
/// " < > # % { } | ' ^ ~ [ ] `
/// Each becomes "%" and two hexadecimal digits. All other characters stay, including the backslash
/// and characters beyond ASCII. Two escapes are wrong, but programs rely on them: the double quote
/// becomes "%34", and the apostrophe becomes "%5C". So decoding does not restore these two
/// characters.
void i18nURLEncode(std::u16string_view text, std::u16string& out);

/// These escapes, written as rules of an ICU transliterator. The rules work in both directions.
extern const char kI18NURLRules[];

#endif
