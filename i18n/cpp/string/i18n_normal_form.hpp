#ifndef I18N_CPP_STRING_I18N_NORMAL_FORM_HPP
#define I18N_CPP_STRING_I18N_NORMAL_FORM_HPP

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <string_view>

#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

/// @throws I18NRuntimeError when ICU does not have the form.
const icu::Normalizer2& i18nNormalizer(I18NNormalizationForms form);
/// Brings a text to a form.
/// @return false when it is in that form already; then there is no result.
/// @throws I18NRuntimeError, QBLOutOfMemoryError
bool i18nNormalize(const icu::Normalizer2& form, const icu::UnicodeString& text,
                   icu::UnicodeString& result);
/// Makes the Japanese substitutions of the settings. @return whether there were any.
/// @throws QBLOutOfMemoryError, std::bad_alloc, std::length_error
bool i18nSubstituteJa(icu::UnicodeString& text);
/// Three texts as one. Work is done on ICU's strings, which can be as long as ours; those of the
/// standard library cannot, at 32 bits.
/// @throws QBLOutOfMemoryError
icu::UnicodeString i18nJoin(std::u16string_view before, const I18NTextView& text,
                            std::u16string_view behind);
inline std::u16string_view i18nUnits(const icu::UnicodeString& text) {
    return std::u16string_view(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

/// Whether a text that takes the place of a part of another, which is in form C, changes nothing of
/// what is around it and nothing in itself. It is looked at alone, with its neighbours: so a run of
/// many marks can be made one by one. False says nothing.
bool i18nStaysAsItIs(const icu::Normalizer2& formC, const I18NTextView& old, int offset, int behind,
                     const I18NTextView& text);
/// Where a text that is one mark goes that belongs before others: behind those of its class.
/// @return -1 if it might combine there, or is none, or stays where it is
int i18nPlaceOfMark(const I18NTextView& old, int offset, const I18NTextView& text);

#endif
