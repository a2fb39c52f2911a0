#ifndef I18N_CPP_I18N_STD_FORMAT_HPP
#define I18N_CPP_I18N_STD_FORMAT_HPP

/// @file
/// The formatters of i18n_fmt.hpp for std::format of C++20. If the standard library lacks
/// std::format, as that of g++ 12 does, this header is empty.
///
/// Threads: as for the objects.
#include <string_view>
#if __cplusplus > 201703L && __has_include(<format>)
#include <format>
#endif

#include "QBLCore/Frame/QBLLanguage.hpp"
#ifdef __cpp_lib_format

#include "i18n/cpp/i18n_format_text.hpp"

/// The base of all formatters here.
template <class Object>
struct I18NStdFormat : std::formatter<std::string_view> {
    template <class Text, class Context>
    auto format(const Text& object, Context& context) const {
        const auto text = i18nFormatText(object);
        return std::formatter<std::string_view>::format(std::string_view(text), context);
    }
};

template <>
struct std::formatter<I18NString> : I18NStdFormat<I18NString> {};
template <>
struct std::formatter<QBLByteBuffer> : I18NStdFormat<QBLByteBuffer> {};
template <class Object>
requires kI18NIsFormattable<Object>
struct std::formatter<Object> : I18NStdFormat<Object> {
};

#endif
#endif
