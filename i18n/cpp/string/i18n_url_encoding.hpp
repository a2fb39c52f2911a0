#ifndef I18N_CPP_STRING_I18N_URL_ENCODING_HPP
#define I18N_CPP_STRING_I18N_URL_ENCODING_HPP

#include <string>
#include <string_view>

/// Appends a text in which the characters that a URL must not hold are escaped: the blank and
/// " < > # % { } | ' ^ ~ [ ] `, each by "%" and two digits. All others stay, those beyond ASCII and
/// the backslash too. Programs rely on two oddities: the double quote is "%34", and the apostrophe
/// "%5C"; so what comes out cannot always be decoded to what went in.
void i18nURLEncode(std::u16string_view text, std::u16string& out);

/// The same as rules of an ICU transliterator, in both directions.
extern const char kI18NURLRules[];

#endif
