#include <locale.h>
#include <stdlib.h>

#include <cfloat>
#include <charconv>
#include <cstdint>
#include <limits>

#include "QBLCore/Types/internal/QBLCharacters.hpp"
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
    // Of digits, without leading zeros. From kTooMany on the others are of no use.
    int count = 0;
    int exponent = 0;

    // The last digits are gathered in 32 bits: multiplications by ten follow each other closely.
    void add(char c) {
        if (count == 0 && c == '0') return;
        m_last = m_last * 10 + static_cast<unsigned char>(c - '0');
        if (++m_lastCount == kGathered) gather();
        if (count < kTooMany) ++count;
    }
    std::uint64_t digits() {
        gather();
        return m_digits;
    }

private:
    static constexpr unsigned kGathered = 9;

    void gather() {
        constexpr std::uint32_t tens[kGathered + 1] = {
            1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};
        m_digits = m_digits * tens[m_lastCount] + m_last;
        m_last = 0;
        m_lastCount = 0;
    }

    std::uint64_t m_digits = 0;
    std::uint32_t m_last = 0;
    unsigned m_lastCount = 0;
};

const char* scan(const char* at, Decimal& number) {
    const char* const begin = at;
    for (; qblIsDigit(*at); ++at) number.add(*at);
    const char* digitsEnd = at;
    bool any = at != begin;
    if (*at == '.') {
        const char* const fraction = ++at;
        for (; qblIsDigit(*at); ++at) number.add(*at);
        if (at - fraction <= kLongFraction)
            number.exponent = static_cast<int>(fraction - at);
        else
            number.count = kTooMany;
        any = any || at != fraction;
        digitsEnd = at;
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
bool quickly(Decimal& number, Real& value) {
    constexpr std::uint64_t exact = std::uint64_t{1} << std::numeric_limits<Real>::digits;
    const int power = number.exponent;
    if (FLT_EVAL_METHOD != 0 || number.count > kMostDigits || power > kHighestPower<Real> ||
        power < -kHighestPower<Real>)
        return false;
    const std::uint64_t integer = number.digits();
    if (integer > exact) return false;
    const auto digits = static_cast<Real>(static_cast<std::int64_t>(integer));
    const auto scale = static_cast<Real>(kPowers[power < 0 ? -power : power]);
    value = power < 0 ? digits / scale : digits * scale;
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
    if (!quickly(number, value) && std::from_chars(begin, text, value).ec != std::errc{})
        slowly(begin, value);
    if (negative) value = -value;
    return true;
}

template bool qblReadReal(const char*& text, float& value);
template bool qblReadReal(const char*& text, double& value);

double qblStrtod(const char* text, char** end) { return strtod_l(text, end, classicLocale()); }
