#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <cstring>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
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

/// @return false when the text is in that form already
bool normalized(const icu::Normalizer2& form, std::u16string_view text, std::u16string& out) {
    const auto length = static_cast<int32_t>(text.size());
    const icu::UnicodeString in(false, text.data(), length);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t kept = form.spanQuickCheckYes(in, status);
    if (U_FAILURE(status)) QBL_THROW(I18NRuntimeError(I18N_NORMALIZATION, nullptr));
    if (kept == length) return false;
    icu::UnicodeString result(in, 0, kept);
    form.normalizeSecondAndAppend(result, in.tempSubString(kept), status);
    if (U_FAILURE(status) || result.isBogus())
        QBL_THROW(I18NRuntimeError(I18N_NORMALIZATION, kFailed));
    out.assign(result.getBuffer(), static_cast<std::size_t>(result.length()));
    return true;
}

std::u16string_view view(const char16_t* units, int length) {
    return std::u16string_view(units, static_cast<std::size_t>(length));
}

const I18NInternalResources& resources() {
    return I18NInternalResources::getInternalResForTesting();
}

/// Whether a text has a character that must not be normalised.
bool isExempt(std::u16string_view text) { return resources().isNonNormalizable(text); }

}  // namespace

I18NString& I18NString::normalize(I18NNormalizationForms form) {
    if (hasFlag(kI18NNoNormalization)) {  // deliberately claimed, not looked at
        setFlag(kI18NNormalized, true);
        return *this;
    }
    leaveAscii();
    QBL_ALLOC_TRY
    std::u16string result;
    if (normalized(normalizer(form), view(m_pCodeUnits, m_unitLength), result)) {
        if (isExempt(view(m_pCodeUnits, m_unitLength))) return *this;
        if (hasJapaneseSubstitutions()) resources().substituteJa(result);
        put(0, m_unitLength, I18NTextView(result.data(), static_cast<int>(result.size())));
    }
    QBL_ALLOC_CATCH
    setFlag(kI18NNormalized, form == I18N_NFC || m_unitLength == 0);
    return *this;
}

// Text that came from the encodings of Japan on personal computers, where some characters are not
// what others take them for.
bool I18NString::hasJapaneseSubstitutions() const {
    return hasFlag(kI18NFromCodePage943) || isPlatformJapanese();
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

void I18NString::useNormalization(bool use) {
    // What was only claimed while it was off is not known.
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

// Replaces units, and brings what is around them to form C. Only what is between the nearest
// characters that nothing before them can combine with needs to be looked at. The one change comes
// last, so that a failure leaves the string as it was.
void I18NString::spliceUnits(int offset, int count, const I18NTextView& text) {
    const I18NTextView old(*this);
    const int length = m_unitLength, behind = offset + count;
    const bool whole = offset == 0 && behind == length;
    const auto finish = [&](int at, int replaced, const I18NTextView& with, bool isNormalized) {
        put(at, replaced, with);
        if (whole || !isNormalized) setFlag(kI18NNormalized, isNormalized);
    };
    if (hasFlag(kI18NNoNormalization)) return finish(offset, count, text, true);

    // Halves of a pair that come together are another character.
    const char16_t before = offset > 0 ? old[offset - 1] : u'\0';
    const char16_t after = behind < length ? old[behind] : u'\0';
    const bool empty = text.length() == 0;
    const bool pairAtBegin = i18nIsHigh(before) && i18nIsLow(empty ? after : text[0]);
    const bool pairAtEnd = i18nIsHigh(empty ? before : text[text.length() - 1]) && i18nIsLow(after);
    const int next = behind < length ? old.next(behind) : behind;
    const auto isInert = [](const char16_t* units, int n) {
        return i18nIsInert(units, static_cast<std::size_t>(n));
    };
    if (!pairAtBegin && !pairAtEnd && isInert(m_pCodeUnits + behind, next - behind) &&
        (text.ascii() != nullptr || isInert(text.units(), text.length())))
        return finish(offset, count, text, true);

    const icu::Normalizer2& form = normalizer(I18N_NFC);
    const auto isBoundary = [&](int i) {
        return form.hasBoundaryBefore(static_cast<UChar32>(old.codePointAt(i)));
    };
    int begin = offset > 0 ? old.before(offset) : offset;
    while (begin > 0 && ((pairAtBegin && begin + 1 == offset) || !isBoundary(begin)))
        begin = old.before(begin);
    int end = pairAtEnd ? behind + 1 : behind;
    while (end < length && !isBoundary(end)) end = old.next(end);
    QBL_ALLOC_TRY
    std::u16string slice(m_pCodeUnits + begin, static_cast<std::size_t>(offset - begin));
    for (int i = 0; i < text.length(); ++i) slice += text[i];
    slice.append(m_pCodeUnits + behind, static_cast<std::size_t>(end - behind));
    std::u16string result;
    if (!normalized(form, slice, result)) return finish(offset, count, text, true);
    if (isExempt(slice)) return finish(offset, count, text, false);
    if (hasJapaneseSubstitutions()) resources().substituteJa(result);
    finish(begin, end - begin, I18NTextView(result.data(), static_cast<int>(result.size())), true);
    QBL_ALLOC_CATCH
}
