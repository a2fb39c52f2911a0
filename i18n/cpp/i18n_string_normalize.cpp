#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <cstring>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "i18n/cpp/i18n_error_codes.h"
#include "i18n/cpp/i18n_errors.hpp"
#include "i18n/cpp/i18n_internal_resources.hpp"
#include "i18n/cpp/i18n_platform_encoding.h"
#include "i18n/cpp/i18n_string.hpp"
#include "i18n/cpp/internal/i18n_icu.hpp"
#include "i18n/cpp/internal/i18n_inert.hpp"
#include "i18n/cpp/internal/i18n_text_view.hpp"

namespace {

const char kFailed[] = "An error occured during string normalization.";
const char kNoAlias[] =
    "Resources access error, could not find the alias for the platform default encoding name.";

/// Whether text of the platform's own encoding has Japanese substitutions.
bool isPlatformJapanese() {
    const char* const name = i18nCanonicalEncoding(I18NGetPlatformDefaultEncoding());
    if (name == nullptr) QBL_THROW(I18NRuntimeError(I18N_UNEXPECTED, kNoAlias));
    for (const char* table : {"ibm-943_", "ibm-942_", "ibm-33722_"})
        if (std::strncmp(name, table, std::strlen(table)) == 0) return true;
    return false;
}

const icu::Normalizer2& normalizer(I18NNormalizationForms form) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* found = nullptr;
    switch (form) {
        case I18N_NFC:
            found = icu::Normalizer2::getNFCInstance(status);
            break;
        case I18N_NFD:
            found = icu::Normalizer2::getNFDInstance(status);
            break;
        case I18N_NFKC:
            found = icu::Normalizer2::getNFKCInstance(status);
            break;
        case I18N_NFKD:
            found = icu::Normalizer2::getNFKDInstance(status);
            break;
    }
    if (found == nullptr || U_FAILURE(status))
        QBL_THROW(I18NRuntimeError(I18N_NORMALIZATION, nullptr));
    return *found;
}

/// @return the normalised text; a null one when the text is in that form already
icu::UnicodeString normalized(const icu::Normalizer2& form, const char16_t* units, int length) {
    const icu::UnicodeString text(false, units, length);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t kept = form.spanQuickCheckYes(text, status);
    if (U_FAILURE(status)) QBL_THROW(I18NRuntimeError(I18N_NORMALIZATION, nullptr));
    icu::UnicodeString result;
    if (kept == length) {
        result.setToBogus();
        return result;
    }
    result.setTo(text, 0, kept);
    form.normalizeSecondAndAppend(result, text.tempSubString(kept), status);
    if (U_FAILURE(status) || result.isBogus())
        QBL_THROW(I18NRuntimeError(I18N_NORMALIZATION, kFailed));
    return result;
}

}  // namespace

I18NString& I18NString::normalize(I18NNormalizationForms form) {
    if (hasFlag(kI18NNoNormalization)) {  // deliberately claimed, not looked at
        setFlag(kI18NNormalized, true);
        return *this;
    }
    leaveAscii();
    const icu::UnicodeString result = normalized(normalizer(form), m_pCodeUnits, m_unitLength);
    if (!result.isBogus()) {
        if (holdsNonNormalizable()) return *this;
        put(0, m_unitLength, I18NTextView(result.getBuffer(), result.length()));
        substituteJapanese();
    }
    setFlag(kI18NNormalized, form == I18N_NFC || m_unitLength == 0);
    return *this;
}

bool I18NString::holdsNonNormalizable() const {
    return I18NInternalResources::getInternalResForTesting().isNonNormalizable(
        std::u16string_view(m_pCodeUnits, static_cast<std::size_t>(m_unitLength)));
}

// Text that came from the encodings of Japan on personal computers, where some characters are not
// what others take them for.
void I18NString::substituteJapanese() {
    if (!hasFlag(kI18NFromCodePage943) && !isPlatformJapanese()) return;
    std::u16string text = toUtf16();
    if (!I18NInternalResources::getInternalResForTesting().substituteJa(text)) return;
    put(0, m_unitLength, I18NTextView(text.data(), static_cast<int>(text.size())));
}

// Replaces units as they are, without a look at the normal form.
void I18NString::put(int offset, int count, const I18NTextView& text) {
    const int length = m_unitLength, newLength = length - count + text.length();
    reserveUnits(newLength);
    std::char_traits<char16_t>::move(m_pCodeUnits + offset + text.length(),
                                     m_pCodeUnits + offset + count,
                                     static_cast<std::size_t>(length - offset - count));
    text.copyTo(m_pCodeUnits + offset);
    m_unitLength = newLength;
    alias();
    changed();
}

void I18NString::useNormalization(bool use) { setFlag(kI18NNoNormalization, !use); }

// Brings the text to form C again after a part of it has changed. Only what is between the nearest
// characters that nothing before them can combine with needs to be looked at.
void I18NString::renormalize(int begin, int end) {
    if (hasFlag(kI18NNoNormalization)) return setFlag(kI18NNormalized, true);
    const I18NTextView text(*this);
    const int length = text.length();
    // With the character behind, which may combine with the last one now.
    const int behind = end < length ? text.next(end) : end;
    const int before = begin > 0 && i18nIsLow(text[begin]) ? begin - 1 : begin;
    if (i18nIsInert(m_pCodeUnits + before, static_cast<std::size_t>(behind - before))) {
        if (end - begin == length) setFlag(kI18NNormalized, true);
        return;
    }
    const icu::Normalizer2& form = normalizer(I18N_NFC);
    const auto isBoundary = [&](int i) {
        return form.hasBoundaryBefore(static_cast<UChar32>(text.codePointAt(i)));
    };
    if (begin > 0) begin = text.before(begin);
    while (begin > 0 && !isBoundary(begin)) begin = text.before(begin);
    while (end < length && !isBoundary(end)) end = text.next(end);
    const icu::UnicodeString result = normalized(form, m_pCodeUnits + begin, end - begin);
    if (!result.isBogus()) {
        if (holdsNonNormalizable()) return setFlag(kI18NNormalized, false);
        put(begin, end - begin, I18NTextView(result.getBuffer(), result.length()));
        substituteJapanese();
    }
    if (begin == 0 && end == length) setFlag(kI18NNormalized, true);
}
