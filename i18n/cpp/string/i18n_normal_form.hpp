#ifndef I18N_CPP_STRING_I18N_NORMAL_FORM_HPP
#define I18N_CPP_STRING_I18N_NORMAL_FORM_HPP

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <string_view>

#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

/// @throws I18NRuntimeError if ICU does not have the form
const icu::Normalizer2& i18nNormalizer(I18NNormalizationForms form);
/// Normalises a text.
/// @return false if ICU's quick check shows that the text is already in that form; `result` is not
///     set then. If the quick check is not certain, true, even if `result` equals the text
/// @throws I18NRuntimeError, QBLOutOfMemoryError
bool i18nNormalize(const icu::Normalizer2& form, const icu::UnicodeString& text,
                   icu::UnicodeString& result);
/// Makes the Japanese substitutions of the settings. @return true if there were any
/// @throws QBLOutOfMemoryError, std::bad_alloc, std::length_error
bool i18nSubstituteJa(icu::UnicodeString& text);
/// Joins three texts. The result is an ICU string, because an ICU string can be as long as our
/// strings. At 32 bits, a string of the standard library cannot.
/// @throws QBLOutOfMemoryError
icu::UnicodeString i18nJoin(std::u16string_view before, const I18NTextView& text,
                            std::u16string_view after);
inline std::u16string_view i18nUnits(const icu::UnicodeString& text) {
    return std::u16string_view(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

/// Returns true if `text` can replace a part of `old` such that the result is in form C without
/// further changes. Looks only at `text` and the characters next to it, so that building a run of
/// many marks one by one stays fast. If this returns false, the result may still be in form C.
/// Requires: `old` is in form C.
bool i18nStaysAsItIs(const icu::Normalizer2& formC, const I18NTextView& old, int offset, int after,
                     const I18NTextView& text);
/// Returns where to insert a single mark that canonical order puts before marks of higher classes:
/// after the marks of its own class and of lower classes.
/// @return -1 if the text is not a single mark, if the mark might combine at that place, or if the
///     place is `offset`
int i18nPlaceOfMark(const I18NTextView& old, int offset, const I18NTextView& text);

#endif
