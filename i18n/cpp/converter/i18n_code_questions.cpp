#include "i18n/cpp/converter/i18n_code_questions.hpp"

#include <unicode/utf16.h>

#include <algorithm>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/shared/QBLThrowNoMemory.hpp"

namespace {

// Converted after each character, to check that the converter is in its initial state again.
constexpr char16_t kNext = 'A';
constexpr char16_t kNone = 0xFFFF;

constexpr int kRoom = 32;

// Returns true if ICU converts the whole text in one call without an error, and keeps no part of
// it.
bool isAllDecoded(UConverter* icu, const char* bytes, int length, UChar*& at, const UChar* limit) {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_toUnicode(icu, &at, limit, &bytes, bytes + length, nullptr, false, &status);
    return ucnv_toUCountPending(icu, &status) == 0 && U_SUCCESS(status);
}

bool isAllEncoded(UConverter* icu, char16_t unit, char*& at, const char* limit) {
    UErrorCode status = U_ZERO_ERROR;
    const UChar* units = &unit;
    ucnv_fromUnicode(icu, &at, limit, &units, units + 1, nullptr, false, &status);
    return ucnv_fromUCountPending(icu, &status) == 0 && U_SUCCESS(status);
}

}  // namespace

bool I18NCodeQuestions::mayAsk(const UConverter* icu) {
    const UConverterType type = ucnv_getType(icu);
    return type == UCNV_SBCS || type == UCNV_MBCS || type == UCNV_LATIN_1 || type == UCNV_US_ASCII;
}

I18NCodeQuestions::I18NCodeQuestions(const UConverter* icu)
    : m_iMaxBytes(std::min<int>(ucnv_getMaxCharSize(icu), kMostBytes)) {
    UErrorCode status = U_ZERO_ERROR;
    m_pICU.reset(ucnv_open(ucnv_getName(icu, &status), &status));
    ucnv_setToUCallBack(m_pICU.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    ucnv_setFromUCallBack(m_pICU.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                          &status);
    // A converter with this name exists, so only a lack of memory can cause a failure.
    if (U_FAILURE(status)) qblThrowNoMemory(QBL_HERE);
    ucnv_setFallback(m_pICU.get(), ucnv_usesFallback(icu));
}

bool I18NCodeQuestions::findPlainASCII(I18NPlainASCII& plain) {
    for (int c = 0; c < 0x80; ++c) {
        const auto unit = static_cast<char16_t>(c);
        UConverter* const icu = m_pICU.get();
        ucnv_reset(icu);
        char bytes[kRoom];
        char* at = bytes;
        UChar units[kRoom];
        UChar* text = units;
        const bool isPlain = isAllEncoded(icu, unit, at, bytes + kRoom) && at == bytes + 1 &&
                             *bytes == static_cast<char>(c) &&
                             isAllEncoded(icu, kNext, at, bytes + kRoom) && at == bytes + 2 &&
                             bytes[1] == kNext &&
                             isAllDecoded(icu, bytes, 2, text, units + kRoom) &&
                             text == units + 2 && units[0] == unit && units[1] == kNext;
        if (!isPlain && !plain.exclude(static_cast<unsigned char>(c))) return false;
    }
    return plain.has(kNext);
}

I18NSequence I18NCodeQuestions::decode(const char* bytes, int length) {
    constexpr I18NSequence kOther = {I18NSequence::Kind::kOther, 0};
    UConverter* const icu = m_pICU.get();
    ucnv_reset(icu);
    UChar units[kRoom];
    UChar* at = units;
    UErrorCode status = U_ZERO_ERROR;
    const char* next = bytes;
    ucnv_toUnicode(icu, &at, units + kRoom, &next, bytes + length, nullptr, false, &status);
    if (status == U_MEMORY_ALLOCATION_ERROR) return {I18NSequence::Kind::kAgain, 0};
    const int pending = ucnv_toUCountPending(icu, &status);
    if (U_FAILURE(status)) return kOther;
    if (at == units && pending == length && length < m_iMaxBytes)
        return {I18NSequence::Kind::kLead, 0};
    const char nextByte = kNext;
    if (at != units + 1 || pending != 0 || U16_IS_SURROGATE(units[0]) || units[0] == 0 ||
        units[0] == kNone || !isAllDecoded(icu, &nextByte, 1, at, units + kRoom) ||
        at != units + 2 || units[1] != kNext)
        return kOther;
    return {I18NSequence::Kind::kUnit, units[0]};
}

void I18NCodeQuestions::encode(char16_t unit, char (&bytes)[4], int& length) {
    length = 0;
    UConverter* const icu = m_pICU.get();
    ucnv_reset(icu);
    char room[kRoom] = {};
    char* at = room;
    UErrorCode status = U_ZERO_ERROR;
    const UChar* units = &unit;
    ucnv_fromUnicode(icu, &at, room + kRoom, &units, units + 1, nullptr, false, &status);
    if (status == U_MEMORY_ALLOCATION_ERROR) length = -1;
    const int pending = ucnv_fromUCountPending(icu, &status);
    const auto size = static_cast<int>(at - room);
    if (U_FAILURE(status) || pending != 0 || size < 1 || size > m_iMaxBytes ||
        std::count(room, at, '\0') != 0)
        return;
    const char* const end = at;
    if (!isAllEncoded(icu, kNext, at, room + kRoom) || at != end + 1 || *end != kNext) return;
    if (ucnv_usesFallback(icu) == 0) {
        const I18NSequence back = decode(room, size);
        if (back.kind == I18NSequence::Kind::kAgain) length = -1;
        if (back.kind != I18NSequence::Kind::kUnit || back.unit != unit) return;
    }
    std::copy(room, room + size, bytes);
    length = size;
}
