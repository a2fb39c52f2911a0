#ifndef I18N_CPP_I18N_STD_TEXT_HPP
#define I18N_CPP_I18N_STD_TEXT_HPP

#include <string_view>
#include <type_traits>

#include "QBLCore/Frame/QBLLanguage.hpp"

/// @file
/// Which texts of the standard library I18NString accepts. Programs need not include this header.
///
/// Threads: any thread may call it.

class I18NPooledString;
class I18NString;

/// True if a constant or a variable of a type converts to the target implicitly.
template <class Text, class Target>
constexpr bool kI18NConverts =
    std::is_convertible_v<const Text&, Target> || std::is_convertible_v<Text&, Target>;

/// UTF-8 in chars of its own type, where the standard has this type.
#ifdef __cpp_lib_char8_t
typedef std::u8string_view I18NUtf8View;
#else
typedef std::string_view I18NUtf8View;
#endif

/// The first of these views to which a text converts; void if it converts to no view.
template <class Text, class View = void, class... Views>
struct I18NFirstView {
    typedef std::conditional_t<std::is_convertible_v<const Text&, View>, View,
                               typename I18NFirstView<Text, Views...>::Type>
        Type;
};
template <class Text>
struct I18NFirstView<Text, void> {
    typedef void Type;
};
template <class Text>
using I18NStdView =
    typename I18NFirstView<Text, std::string_view, std::u16string_view, std::u32string_view,
                           std::wstring_view, I18NUtf8View>::Type;

/// Returns a text as a view; the view's chars are UTF-8.
template <class Text>
auto i18nViewOf(const Text& text) {
    const I18NStdView<Text> view(text);
    if constexpr (sizeof(*view.data()) == 1)
        return std::string_view(reinterpret_cast<const char*>(view.data()), view.size());
    else
        return view;
}

/// True for a type that converts to a view of the standard library, except for a type that the
/// operations of I18NString without templates accept. So the templates change no existing call.
template <class Text>
constexpr bool kI18NIsStdText =
    !std::is_void_v<I18NStdView<Text>> && !kI18NConverts<Text, const char*> &&
    !kI18NConverts<Text, const wchar_t*> && !kI18NConverts<Text, wchar_t> &&
    !kI18NConverts<Text, const I18NString&> && !kI18NConverts<Text, const I18NPooledString&>;

/// True for a standard text and for a null-terminated text, for which I18NString has no order.
template <class Text>
constexpr bool kI18NIsOrdered = kI18NIsStdText<Text> ||
                                (std::is_convertible_v<const Text&, const char*> &&
                                 !std::is_null_pointer_v<Text> &&
                                 !kI18NConverts<Text, const I18NString&>);

#endif
