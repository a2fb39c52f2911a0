#ifndef I18N_CPP_I18N_LITERALS_HPP
#define I18N_CPP_I18N_LITERALS_HPP

#include <cstddef>

#include "i18n/cpp/i18n_string.hpp"

/// @file
/// Literals of strings: "text"_i18n. The chars are UTF-8; NUL characters are part of the text.
///
/// Threads: as for the constructors of I18NString.

inline namespace i18n_literals {

inline I18NString operator""_i18n(const char* utf8, std::size_t length) {
    return I18NString(std::string_view(utf8, length));
}
inline I18NString operator""_i18n(const char16_t* text, std::size_t length) {
    return I18NString(std::u16string_view(text, length));
}
inline I18NString operator""_i18n(const char32_t* text, std::size_t length) {
    return I18NString(std::u32string_view(text, length));
}
inline I18NString operator""_i18n(const wchar_t* text, std::size_t length) {
    return I18NString(std::wstring_view(text, length));
}
#ifdef __cpp_lib_char8_t
inline I18NString operator""_i18n(const char8_t* utf8, std::size_t length) {
    return I18NString(std::u8string_view(utf8, length));
}
#endif

}  // namespace i18n_literals

#endif
