#include "QBLCore/Types/c/QBLDataTypesConversion_c.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Types/internal/QBLCharacters.hpp"
#include "QBLCore/Types/internal/QBLRealText.hpp"

namespace {

const char* skipBlanks(const char* text) {
    while (qblIsBlank(*text)) ++text;
    return text;
}

/// Takes up to nine digits, because their value fits into 32 bits.
std::uint32_t takeNine(const char*& text, unsigned& count) {
    std::uint32_t value = 0;
    for (count = 0; count < 9 && qblIsDigit(*text); ++count)
        value = value * 10 + static_cast<unsigned char>(*text++ - '0');
    return value;
}

/// Returns false if the character is not a digit.
inline bool appendDigit(char c, std::uint32_t& value) {
    if (!qblIsDigit(c)) return false;
    value = value * 10 + static_cast<unsigned char>(c - '0');
    return true;
}

/// Takes the first digits, up to nine, without a loop counter, because most numbers are short.
/// @return true if there are nine digits
template <std::size_t... kAt>
bool takeFirst(const char* text, std::uint32_t& value, std::index_sequence<kAt...>) {
    return (appendDigit(text[kAt], value) && ...);
}

template <class Int>
int readInteger(const char* text, Int& value) {
    using Limits = std::numeric_limits<Int>;
    using Unsigned = std::make_unsigned_t<Int>;
    constexpr Unsigned kMost = Limits::max();
    static constexpr Unsigned kPowers[] = {1,      10,      100,      1000,      10000,
                                           100000, 1000000, 10000000, 100000000, 1000000000};
    if (static_cast<unsigned char>(*text) <= ' ') text = skipBlanks(text);
    if (*text == '\0') return 0;
    const bool negative = *text == '-';
    if (negative || *text == '+') ++text;
    if (!qblIsDigit(*text)) {
        value = 0;
        return 0;
    }
    std::uint32_t first = 0;
    const bool mayGoOn = takeFirst(text, first, std::make_index_sequence<9>());
    if (!mayGoOn) {
        const Int small = static_cast<Int>(first);
        value = negative ? -small : small;
        return 1;
    }
    text += 9;
    Unsigned magnitude = first;
    if (sizeof(Int) > sizeof(int)) {
        unsigned count = 0;
        const std::uint32_t next = takeNine(text, count);
        magnitude = magnitude * kPowers[count] + next;
    }
    for (; qblIsDigit(*text) && magnitude <= kMost / 10; ++text)
        magnitude = magnitude * 10 + static_cast<unsigned char>(*text - '0');
    if (magnitude > kMost + negative || qblIsDigit(*text)) {
        value = negative ? Limits::min() : Limits::max();
        return 0;
    }
    value = static_cast<Int>(negative ? 0 - magnitude : magnitude);
    return 1;
}

template <class Real>
int readReal(const char* text, Real& value) {
    text = skipBlanks(text);
    if (*text == '\0') return 0;
    if (qblReadReal(text, value) == nullptr) return 0;
    if (!std::isinf(value)) return 1;
    value = std::copysign(std::numeric_limits<Real>::max(), value);
    return 0;
}

// Out of line, so that the readers need not compute the addresses of the texts.
[[gnu::noinline, gnu::cold]] void refuse(const char* str, const void* value) {
    QBL_ASSERT(str != NULL);
    QBL_ASSERT(value != NULL);
}

inline void check(const char* str, const void* value) {
    if (__builtin_expect(str == nullptr || value == nullptr, 0)) refuse(str, value);
}

int terminate(const char* buf, char* end) {
    *end = '\0';
    return static_cast<int>(end - buf);
}

}  // namespace

// The assertions use NULL, not nullptr, because their error texts quote the condition.

int asciiToInt32(const char* str, int* value) {
    check(str, value);
    return readInteger(str, *value);
}

int asciiToInt64(const char* str, long long* value) {
    check(str, value);
    return readInteger(str, *value);
}

int asciiToFloat32(const char* str, float* value) {
    check(str, value);
    return readReal(str, *value);
}

int asciiToFloat64(const char* str, double* value) {
    check(str, value);
    return readReal(str, *value);
}

int int32ToAscii(char* buf, int value) {
    QBL_ASSERT(buf != NULL);
    return terminate(buf, qblWriteInteger(buf, value));
}

int int64ToAscii(char* buf, long long value) {
    QBL_ASSERT(buf != NULL);
    return terminate(buf, qblWriteInteger(buf, value));
}

int float32ToAscii(char* buf, float value) {
    QBL_ASSERT(buf != NULL);
    return terminate(buf, qblWriteReal(buf, static_cast<double>(value), 6));
}

int float64ToAscii(char* buf, double value) {
    QBL_ASSERT(buf != NULL);
    return terminate(buf, qblWriteReal(buf, value, 6));
}
