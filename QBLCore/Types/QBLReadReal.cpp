#include <locale.h>
#include <stdlib.h>
#include <string.h>

#include <charconv>
#include <cmath>

#include "QBLCore/Types/internal/QBLCharacters.hpp"
#include "QBLCore/Types/internal/QBLRealText.hpp"

namespace {

// The C library has the C locale as static data: newlocale() cannot fail, nothing needs freeing.
locale_t classicLocale() {
    static const locale_t kClassic = newlocale(LC_ALL_MASK, "C", nullptr);
    return kClassic;
}

void slowly(const char* text, float& value) { value = strtof_l(text, nullptr, classicLocale()); }
void slowly(const char* text, double& value) { value = strtod_l(text, nullptr, classicLocale()); }

/// On 32-bit x86, std::from_chars multiplies integers below 2^53 by powers of ten up to 10^22 in
/// x87 registers. It rounds the product twice if the product has more than their 64 bits.
template <class Real>
bool mayBeRoundedTwice(Real value) {
    if (sizeof(void*) > 4 || sizeof value < sizeof(double)) return false;
    const Real magnitude = std::fabs(value);
    return magnitude >= Real(1e19) && magnitude <= Real(1e38);
}

const char* pastDigits(const char* at) {
    while (qblIsDigit(*at)) ++at;
    return at;
}

/// @param at  the first character after the sign
/// @return the first character after the number; null if the text does not begin with one
const char* scan(const char* at) {
    const char* const whole = at;
    at = pastDigits(at);
    const auto digits = at - whole;
    const char* const fraction = *at == '.' ? at + 1 : at;
    at = pastDigits(fraction);
    if (digits + (at - fraction) == 0) return nullptr;
    if ((*at | 0x20) != 'e') return at;
    ++at;
    if (*at == '-' || *at == '+') ++at;
    return qblIsDigit(*at) ? pastDigits(at) : nullptr;
}

/// Reads any text: also a number that does not begin with a digit, does not end within the first
/// kShort characters, or is refused or rounded wrongly by std::from_chars.
/// @param begin  the number with a minus sign, but without a plus sign
/// @param digits  the number without a sign
template <class Real>
[[gnu::noinline]] const char* readAny(const char* begin, const char* digits, Real& value) {
    value = 0;
    const char* const end = scan(digits);
    if (end == nullptr) return nullptr;
    if (std::from_chars(begin, end, value).ec != std::errc{} || mayBeRoundedTwice(value))
        slowly(begin, value);
    return end;
}

}  // namespace

template <class Real>
const char* qblReadReal(const char* text, Real& value) {
    constexpr std::size_t kShort = 64;
    const char* const digits = *text == '-' || *text == '+' ? text + 1 : text;
    const char* const begin = *text == '+' ? digits : text;
    if (qblIsDigit(*digits)) {
        const std::size_t length = strnlen(begin, kShort);
        const auto [end, problem] = std::from_chars(begin, begin + length, value);
        const bool isWhole = end != begin + kShort && (*end | 0x20) != 'e';
        if (isWhole && problem == std::errc{} && !mayBeRoundedTwice(value)) return end;
    }
    return readAny(begin, digits, value);
}

template const char* qblReadReal(const char* text, float& value);
template const char* qblReadReal(const char* text, double& value);

double qblStrtod(const char* text, char** end) { return strtod_l(text, end, classicLocale()); }
