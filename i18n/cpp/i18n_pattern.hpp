#ifndef I18N_CPP_I18N_PATTERN_HPP
#define I18N_CPP_I18N_PATTERN_HPP

#include <memory>

#include "i18n/cpp/i18n_string.hpp"

struct I18NPatternDelete {
    void operator()(I18NPatternCode* code) const { I18NString::deletePatternCode(code); }
};

/// Owns a precompiled LIKE pattern.
///
/// Threads: any number of threads may match with the same pattern at the same time.
///
///     const I18NPatternPtr old = i18nPattern("%.old"_i18n);
///     for (const I18NString& name : names)
///         if (name.matchLike(*old)) show(name);
using I18NPatternPtr = std::unique_ptr<I18NPatternCode, I18NPatternDelete>;

/// Precompiles a pattern for I18NString::matchLike() and substringLike().
/// @param escape  0 for no escape character
/// @throws QBLOutOfMemoryError
inline I18NPatternPtr i18nPattern(const I18NString& pattern, wchar_t escape = 0) {
    return I18NPatternPtr(I18NString::getPatternCode(pattern, escape));
}

#endif
