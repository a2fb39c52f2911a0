#include <locale.h>
#include <stdlib.h>
#include <string.h>

#include <charconv>
#include <cmath>

#include "QBLCore/Types/internal/QBLCharacters.hpp"
#include "QBLCore/Types/internal/QBLRealText.hpp"

namespace {

// The C locale is static data of the C library: newlocale() cannot fail, and no one must free it.
locale_t classicLocale() {
    static const locale_t kClassic = newlocale(LC_ALL_MASK, "C", nullptr);
    return kClassic;
}

void slowly(const char* text, float& value) { value = strtof_l(text, nullptr, classicLocale()); }
void slowly(const char* text, double& value) { value = strtod_l(text, nullptr, classicLocale()); }

/// On 32-bit x86, std::from_chars multiplies integers below 2^53 by powers of ten up to 10^22 in
/// x87 registers. A product with more than the 64 bits of such a register is rounded twice.
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

/// Reads any text, including numbers that do not begin with a digit, numbers that do not end within
/// the first kShort characters, and numbers that std::from_chars refuses or rounds wrongly.
/// @param begin  the start of the number: its minus sign if it has one, but not a plus sign
/// @param digits  the number after its sign
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
