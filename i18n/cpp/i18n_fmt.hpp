#ifndef I18N_CPP_I18N_FMT_HPP
#define I18N_CPP_I18N_FMT_HPP

/// @file
/// Formatters for the library {fmt}: strings, pooled strings, and, with QBLThrowableText.hpp,
/// QBLMessageText.hpp or QBLTypesText.hpp, throwables, messages, buffers and variants. They take
/// the format specifications of a text. Without {fmt}, this header is empty.
///
/// Threads: as for the objects.
///
///     fmt::print("{:>20} {}\n", name, variant);
#if __has_include(<fmt/format.h>)

#include <fmt/format.h>

#include "i18n/cpp/i18n_format_text.hpp"

/// The base of all formatters here.
template <class Object>
struct I18NFmt : fmt::formatter<fmt::string_view> {
    template <class Text, class Context>
    auto format(const Text& object, Context& context) const {
        const auto text = i18nFormatText(object);
        return fmt::formatter<fmt::string_view>::format(fmt::string_view(text.data(), text.size()),
                                                        context);
    }
};

template <>
struct fmt::formatter<I18NString> : I18NFmt<I18NString> {};
template <>
struct fmt::formatter<QBLByteBuffer> : I18NFmt<QBLByteBuffer> {};
template <class Object>
struct fmt::formatter<Object, char, std::enable_if_t<kI18NIsFormattable<Object>>>
    : I18NFmt<Object> {};

#endif
#endif
