#include <cstring>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_platform_encoding.h"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/locale/i18n_icu.hpp"
#include "i18n/cpp/locale/i18n_settings.hpp"
#include "i18n/cpp/string/i18n_allocation.hpp"
#include "i18n/cpp/string/i18n_inert.hpp"
#include "i18n/cpp/string/i18n_normal_form.hpp"
#include "i18n/cpp/string/i18n_text_view.hpp"

namespace {

const char kNoAlias[] =
    "Resources access error, could not find the alias for the platform default encoding name.";

/// Returns true if the platform's default encoding has Japanese substitutions.
bool isPlatformJapanese() {
    const char* const name = i18nCanonicalEncoding(I18NGetPlatformDefaultEncoding());
    if (name == nullptr) QBL_THROW(I18NRuntimeError(I18N_UNEXPECTED, kNoAlias));
    for (const char* table : {"ibm-943_", "ibm-942_", "ibm-33722_"})
        if (std::strncmp(name, table, std::strlen(table)) == 0) return true;
    return false;
}

}  // namespace

I18NString& I18NString::normalize(I18NNormalizationForms form) {
    if (hasFlag(kI18NNoNormalization)) {  // deliberately set without a check
        setFlag(kI18NNormalized, true);
        return *this;
    }
    leaveAscii();
    QBL_ALLOC_TRY
    icu::UnicodeString result;
    if (i18nNormalize(i18nNormalizer(form), *m_pUnicodeString, result)) {
        const bool exempt = I18NSettings::now().isNonNormalizable(i18nUnits(*m_pUnicodeString));
        if (exempt) result = *m_pUnicodeString;
        const bool substituted = hasJapaneseSubstitutions() && i18nSubstituteJa(result);
        if (!exempt || substituted)
            put(0, m_unitLength, I18NTextView(result.getBuffer(), result.length()));
        if (exempt) return *this;
    }
    I18N_ALLOC_CATCH
    setFlag(kI18NNormalized, form == I18N_NFC || m_unitLength == 0);
    return *this;
}

// Japanese encodings of personal computers map some characters differently from other encodings.
// The substitutions apply to text from these encodings.
bool I18NString::hasJapaneseSubstitutions() const {
    return !I18NSettings::now().jaSubstitutions.empty() &&
           (hasFlag(kI18NFromCodePage943) || isPlatformJapanese());
}

void I18NString::useNormalization(bool use) {
    // normalize() may have set the flag without a check while normalisation was off.
    if (use && hasFlag(kI18NNoNormalization) && m_pUnicodeString != nullptr)
        setFlag(kI18NNormalized, false);
    setFlag(kI18NNoNormalization, !use);
}

// Brings a new text to form C.
void I18NString::renormalize() {
    const auto length = static_cast<std::size_t>(m_unitLength);
    const bool isForm = hasFlag(kI18NNoNormalization) || i18nIsInert(m_pCodeUnits, length);
    setFlag(kI18NNormalized, isForm);
    if (!isForm) normalize();
}
