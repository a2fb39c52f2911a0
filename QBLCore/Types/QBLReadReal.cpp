#include <locale.h>
#include <stdlib.h>

#include <cfloat>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "QBLCore/Types/internal/QBLCharacters.hpp"
#include "QBLCore/Types/internal/QBLPowersOfTen.hpp"
#include "QBLCore/Types/internal/QBLRealText.hpp"

namespace {

// Of the C library's static data: there is nothing to fail nor to free.
locale_t classicLocale() {
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
    return classic;
}

void slowly(const char* text, float& value) { value = strtof_l(text, nullptr, classicLocale()); }
void slowly(const char* text, double& value) { value = strtod_l(text, nullptr, classicLocale()); }

// Powers of ten that the type has exactly.
constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                              1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                              1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
template <class Real>
constexpr int kHighestPower = 22;
template <>
constexpr int kHighestPower<float> = 10;

constexpr int kMostDigits = 19, kTooMany = kMostDigits + 1, kLongFraction = 1000;

/// The digits of a number as an integer, and the power of ten that it is multiplied by.
struct Decimal {
    int count = 0;  // of digits, without leading zeros; with kTooMany the others are of no use
    int exponent = 0;
    std::uint64_t digits = 0;

    void add(const char* at, const char* end) {
        if (count == 0)
            while (at != end && *at == '0') ++at;
        if (end - at > kMostDigits - count) {
            count = kTooMany;
            return;
        }
        count += static_cast<int>(end - at);
        for (; end - at >= 8; at += 8) {
            const std::uint32_t eight = four(at) * 10000 + four(at + 4);
            digits = digits * 100000000 + eight;
        }
        if (end - at >= 4) {
            digits = digits * 10000 + four(at);
            at += 4;
        }
        std::uint32_t last = 0, scale = 1;
        for (; at != end; ++at, scale *= 10)
            last = last * 10 + static_cast<std::uint32_t>(*at - '0');
        digits = digits * scale + last;
    }

private:
    // The first character is the lowest byte: neighbours are put together, and then pairs.
    static std::uint32_t four(const char* at) {
        std::uint32_t word;
        std::memcpy(&word, at, sizeof word);
        word &= 0x0F0F0F0F;
        word = (word * 10 + (word >> 8)) & 0x00FF00FF;
        return (word * 100 + (word >> 16)) & 0xFFFF;
    }
};

const char* pastDigits(const char* at) {
    while (qblIsDigit(*at)) ++at;
    return at;
}

const char* scan(const char* begin, Decimal& number) {
    const char* at = pastDigits(begin);
    const char* digitsEnd = at;
    bool any = at != begin;
    number.add(begin, at);
    if (*at == '.') {
        const char* const fraction = at + 1;
        digitsEnd = at = pastDigits(fraction);
        if (at - fraction <= kLongFraction) {
            if (number.count != kTooMany) number.add(fraction, at);
            number.exponent = static_cast<int>(fraction - at);
        } else {
            number.count = kTooMany;
        }
        any = any || at != fraction;
    }
    if (!any) return nullptr;
    if ((*digitsEnd | 0x20) != 'e') return digitsEnd;
    const bool negative = *++at == '-';
    if (*at == '-' || *at == '+') ++at;
    if (!qblIsDigit(*at)) return nullptr;
    int exponent = 0;
    for (; qblIsDigit(*at); ++at)
        if (exponent < 10000) exponent = exponent * 10 + (*at - '0');
    number.exponent += negative ? -exponent : exponent;
    return at;
}

/// Where digits and power of ten are both exact, one multiplication or division rounds once.
/// (std::from_chars would do the same, but on x86 with the rounding of the x87.)
template <class Real>
bool quickly(const Decimal& number, Real& value) {
    constexpr std::uint64_t exact = std::uint64_t{1} << std::numeric_limits<Real>::digits;
    const int power = number.exponent;
    if (FLT_EVAL_METHOD != 0 || number.count > kMostDigits || power > kHighestPower<Real> ||
        power < -kHighestPower<Real>)
        return false;
    const std::uint64_t integer = number.digits;
    if (integer > exact) return false;
    const auto digits = static_cast<Real>(static_cast<std::int64_t>(integer));
    const auto scale = static_cast<Real>(kPowers[power < 0 ? -power : power]);
    value = power < 0 ? digits / scale : digits * scale;
    return true;
}

/// Multiplies by 64 bits of the power of ten, and rounds unless what is cut off is too close to the
/// middle. The exact product is less than 2 above the one computed, in its last place.
/// @return false also for numbers too large, and for those too small to be normalised
template <class Real>
bool nearly(const Decimal& number, Real& value) {
    using Bits = std::conditional_t<sizeof(Real) == 4, std::uint32_t, std::uint64_t>;
    using Limits = std::numeric_limits<Real>;
    const int power = number.exponent;
    if (number.count == 0 || number.count > kMostDigits || power < kQBLLowestPower ||
        power > kQBLHighestPower)
        return false;
    const int shift = __builtin_clzll(number.digits);
    const std::uint64_t product = qblMultiplyHigh(number.digits << shift, qblPowerOfTen(power));
    const int places = 64 - __builtin_clzll(product) - Limits::digits;
    const std::uint64_t half = std::uint64_t{1} << (places - 1);
    const std::uint64_t fraction = product & (2 * half - 1);
    if (fraction <= half && fraction + 2 > half) return false;
    std::uint64_t mantissa = (product >> places) + (fraction > half);
    int exponent = places + qblPowerOfTwo(power) + 1 - shift + Limits::digits;
    if (mantissa >> Limits::digits != 0) {
        mantissa >>= 1;
        ++exponent;
    }
    if (exponent < Limits::min_exponent || exponent > Limits::max_exponent) return false;
    constexpr Bits implied = Bits{1} << (Limits::digits - 1);
    const int fromLowest = exponent - Limits::min_exponent;
    const Bits biased = Bits(1) + static_cast<unsigned>(fromLowest);
    const Bits bits = (biased << (Limits::digits - 1)) | (static_cast<Bits>(mantissa) & ~implied);
    std::memcpy(&value, &bits, sizeof value);
    return true;
}

}  // namespace

template <class Real>
bool qblReadReal(const char*& text, Real& value) {
    const char* const start = text;
    const bool negative = *start == '-';
    const char* const begin = negative || *start == '+' ? start + 1 : start;
    Decimal number;
    value = 0;
    text = scan(begin, number);
    if (text == nullptr) return false;
    if (!quickly(number, value) && !nearly(number, value) &&
        std::from_chars(begin, text, value).ec != std::errc{})
        slowly(begin, value);
    static constexpr Real kSigns[] = {1, -1};  // no branch, which nobody could foresee
    value *= kSigns[negative];
    return true;
}

template bool qblReadReal(const char*& text, float& value);
template bool qblReadReal(const char*& text, double& value);

double qblStrtod(const char* text, char** end) { return strtod_l(text, end, classicLocale()); }
