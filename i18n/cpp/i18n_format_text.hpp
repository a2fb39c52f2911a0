#ifndef I18N_CPP_I18N_FORMAT_TEXT_HPP
#define I18N_CPP_I18N_FORMAT_TEXT_HPP

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "i18n/cpp/i18n_string.hpp"

class QBLByteBuffer;

/// @file
/// What i18n_fmt.hpp and i18n_std_format.hpp share. Programs need not include this header.
///
/// Threads: as for the objects.

template <class Object, class = void>
constexpr bool kI18NHasText = false;
template <class Object>
constexpr bool kI18NHasText<Object, std::void_t<decltype(qblText(std::declval<const Object&>()))>> =
    true;

/// True for types whose text a formatter shows: pooled strings, and the types that a qblText()
/// function accepts, which QBLThrowableText.hpp, QBLMessageText.hpp and QBLTypesText.hpp declare.
/// False for I18NString and QBLByteBuffer, which have formatters of their own because they are
/// ranges, too.
template <class Object>
constexpr bool kI18NIsFormattable =
    !std::is_same_v<Object, I18NString> && !std::is_base_of_v<QBLByteBuffer, Object> &&
    (std::is_convertible_v<const Object&, const I18NString&> || kI18NHasText<Object>);

inline std::string_view i18nFormatText(const I18NString& text) { return text.utf8View(); }
template <class Object, std::enable_if_t<kI18NHasText<Object>, int> = 0>
std::string i18nFormatText(const Object& object) {
    return qblText(object);
}

#endif
