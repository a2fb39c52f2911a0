#include <locale.h>
#include <stdlib.h>

#include <charconv>

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

}  // namespace

template <class Real>
const char* qblReadAnyReal(const char* text, Real& value) {
    value = 0;
    const char* const digits = *text == '-' || *text == '+' ? text + 1 : text;
    const char* const end = scan(digits);
    if (end == nullptr) return nullptr;
    const char* const begin = *text == '-' ? text : digits;
    if (std::from_chars(begin, end, value).ec != std::errc{} || qblMayBeRoundedTwice(value))
        slowly(begin, value);
    return end;
}

template const char* qblReadAnyReal(const char* text, float& value);
template const char* qblReadAnyReal(const char* text, double& value);

double qblStrtod(const char* text, char** end) { return strtod_l(text, end, classicLocale()); }
