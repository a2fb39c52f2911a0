#include "i18n/cpp/stream/i18n_stream_mappings.hpp"

#include <emmintrin.h>
#include <unicode/ucnv.h>

#include <algorithm>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/converter/i18n_converter_access.hpp"

namespace {

constexpr int kMostBytes = 64;  // for a character and the escape sequences around it
constexpr int kMostUnits = 16;
constexpr char16_t kFirstPrivate = 0xE000;
constexpr char16_t kPrivateUnits = 0xF900 - kFirstPrivate;

// Neither function resets the error, so ICU stops.
void refuseOutput(const void*, UConverterFromUnicodeArgs*, const UChar*, int32_t, UChar32,
                  UConverterCallbackReason, UErrorCode*) {}
void refuseInput(const void*, UConverterToUnicodeArgs*, const char*, int32_t,
                 UConverterCallbackReason, UErrorCode*) {}

bool isPrivate(char16_t unit) {
    return static_cast<char16_t>(unit - kFirstPrivate) < kPrivateUnits;
}

bool hasTables(UConverterType type) {
    return type == UCNV_SBCS || type == UCNV_DBCS || type == UCNV_MBCS ||
           type == UCNV_EBCDIC_STATEFUL || type == UCNV_ISO_2022;
}

}  // namespace

I18NStreamMappings::I18NStreamMappings(const I18NConverter& converter) : m_converter(converter) {
    const UConverterType type = ucnv_getType(I18NConverterAccess::icu(converter));
    m_bMayLoseAny = type == UCNV_COMPOUND_TEXT;
    m_bMayLose = m_bMayLoseAny || hasTables(type);
}

const char16_t* I18NStreamMappings::firstSuspect(const char16_t* text, const char16_t* end) const {
    if (m_bMayLoseAny) return text;
    // SSE2 compares signed numbers only, so both sides are shifted by 0x8000.
    const __m128i first = _mm_set1_epi16(static_cast<short>(kFirstPrivate ^ 0x8000));
    const __m128i count = _mm_set1_epi16(static_cast<short>(kPrivateUnits - 0x8000));
    constexpr std::ptrdiff_t kBlock = sizeof(__m128i) / sizeof *text;
    for (; end - text >= kBlock; text += kBlock) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
        if (_mm_movemask_epi8(_mm_cmplt_epi16(_mm_sub_epi16(units, first), count)) != 0) break;
    }
    return std::find_if(text, end, isPrivate);
}

UConverter* I18NStreamMappings::scratch() {
    QBL_ALLOC_TRY
    if (m_pScratch == nullptr) m_pScratch = std::make_unique<I18NConverter>(m_converter);
    QBL_ALLOC_CATCH
    UConverter* const icu = I18NConverterAccess::icu(*m_pScratch);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_reset(icu);
    ucnv_setFromUCallBack(icu, refuseOutput, nullptr, nullptr, nullptr, &status);
    ucnv_setToUCallBack(icu, refuseInput, nullptr, nullptr, nullptr, &status);
    return icu;
}

bool I18NStreamMappings::isLost(const char16_t* units, int length) {
    if (length != 1) return findLost(units, length);
    QBL_ALLOC_TRY
    if (m_answers.empty()) m_answers.resize(0x10000);
    QBL_ALLOC_CATCH
    Answer& answer = m_answers[*units];
    if (!answer.isKnown) answer = {true, findLost(units, length)};
    return answer.isLost;
}

bool I18NStreamMappings::findLost(const char16_t* units, int length) {
    UConverter* const icu = scratch();
    ucnv_setFallback(icu, false);
    char bytes[kMostBytes];
    UChar back[kMostUnits];
    UErrorCode status = U_ZERO_ERROR;
    const int size = ucnv_fromUChars(icu, bytes, kMostBytes, units, length, &status);
    if (U_FAILURE(status)) return false;  // ICU asks a policy
    const int count = ucnv_toUChars(icu, back, kMostUnits, bytes, size, &status);
    return U_FAILURE(status) || count != length || !std::equal(units, units + length, back);
}

bool I18NStreamMappings::hasFit(const char16_t* units, int length) {
    if (!isConvertible(units, length, true)) return false;
    // If the character is also convertible without a best fit, ICU refused it because of the text
    // before it.
    return !isConvertible(units, length, false) || isLost(units, length);
}

bool I18NStreamMappings::isConvertible(const char16_t* units, int length, bool fallback) {
    UConverter* const icu = scratch();
    ucnv_setFallback(icu, fallback);
    char bytes[kMostBytes];
    char* at = bytes;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_fromUnicode(icu, &at, bytes + kMostBytes, &units, units + length, nullptr, false, &status);
    // A character that ICU keeps until it has the next character does not count as convertible: ICU
    // decides about both together.
    return U_SUCCESS(status) && at != bytes && ucnv_fromUCountPending(icu, &status) == 0;
}
