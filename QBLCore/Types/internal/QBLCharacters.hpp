#ifndef QBLCORE_TYPES_INTERNAL_QBLCHARACTERS_HPP
#define QBLCORE_TYPES_INTERNAL_QBLCHARACTERS_HPP

#include <cstdint>
#include <cstring>
#include <type_traits>

// Character classes and digits of the C locale.

inline bool qblIsDigit(char c) { return static_cast<unsigned char>(c - '0') < 10; }
inline bool qblIsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

constexpr char kQBLDigitPairs[] =
    "0001020304050607080910111213141516171819202122232425262728293031323334353637383940414243444546"
    "4748495051525354555657585960616263646566676869707172737475767778798081828384858687888990919293"
    "949596979899";

/// Writes a number below 100 as two digits.
inline char* qblWritePair(char* out, std::uint32_t value) {
    std::memcpy(out, kQBLDigitPairs + 2 * value, 2);
    return out + 2;
}

/// Writes a number below 10000 as four digits.
inline char* qblWriteFour(char* out, std::uint32_t value) {
    return qblWritePair(qblWritePair(out, value / 100), value % 100);
}

/// Writes a number below 100,000,000 as eight digits.
inline char* qblWriteEight(char* out, std::uint32_t value) {
    return qblWriteFour(qblWriteFour(out, value / 10000), value % 10000);
}

/// Writes a number below 10000 as one to four digits, without leading zeros.
inline char* qblWriteUpToFour(char* out, std::uint32_t value) {
    if (value < 100) {
        if (value >= 10) return qblWritePair(out, value);
        *out = static_cast<char>('0' + value);
        return out + 1;
    }
    if (value >= 1000) return qblWriteFour(out, value);
    *out = static_cast<char>('0' + value / 100);
    return qblWritePair(out + 1, value % 100);
}

/// Writes a number without leading zeros. std::to_chars is slower, because it divides the whole
/// number for every two digits. For 64-bit numbers in 32-bit code, it takes four times as long.
inline char* qblWriteUnsigned(char* out, std::uint32_t value) {
    if (value < 10000) return qblWriteUpToFour(out, value);
    if (value < 100000000) return qblWriteFour(qblWriteUpToFour(out, value / 10000), value % 10000);
    return qblWriteEight(qblWriteUpToFour(out, value / 100000000), value % 100000000);
}

inline char* qblWriteUnsigned(char* out, std::uint64_t value) {
    constexpr std::uint32_t kBillion = 1000000000;
    if (value <= 0xFFFFFFFFU) return qblWriteUnsigned(out, static_cast<std::uint32_t>(value));
    const std::uint64_t high = value / kBillion;
    const auto low = static_cast<std::uint32_t>(value - high * kBillion);
    out = qblWriteUnsigned(out, high);
    *out = static_cast<char>('0' + low / 100000000);
    return qblWriteEight(out + 1, low % 100000000);
}

/// Writes a signed number in the same way; a negative number has a minus sign.
template <class Integer>
char* qblWriteInteger(char* out, Integer value) {
    auto magnitude = static_cast<std::make_unsigned_t<Integer>>(value);
    if (value < 0) {
        *out++ = '-';
        magnitude = ~magnitude + 1;
    }
    if constexpr (sizeof magnitude == sizeof(std::uint64_t))
        return qblWriteUnsigned(out, std::uint64_t{magnitude});
    else
        return qblWriteUnsigned(out, std::uint32_t{magnitude});
}

#endif
