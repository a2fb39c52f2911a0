#ifndef QBLCORE_TYPES_INTERNAL_QBLREALTEXT_HPP
#define QBLCORE_TYPES_INTERNAL_QBLREALTEXT_HPP

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "QBLCore/Types/internal/QBLCharacters.hpp"

/// Writes a number as printf(3) does for "%.6g" or "%.9g" in the C locale; ignores the locale of
/// the process. Writes no terminating NUL. The longest text is as long as "-1.23456789e-308".
/// @param digits  6 or 9
/// @return the end of the text
char* qblWriteReal(char* out, double value, int digits);

/// Reads a decimal number: an optional sign, then digits with an optional point before, between or
/// after them, then an optional exponent (e or E, an optional sign, digits). Rounds to the nearest
/// value, ties to even. Returns infinity for a number beyond the range, as strtod(3) does in the C
/// locale.
/// @return the end of the number. Null, with the value 0, if the text does not begin with a number
///     or the exponent has no digits.
template <class Real>
const char* qblReadAnyReal(const char* text, Real& value);
extern template const char* qblReadAnyReal(const char* text, float& value);
extern template const char* qblReadAnyReal(const char* text, double& value);

/// On 32-bit x86, std::from_chars multiplies integers below 2^53 by powers of ten up to 10^22 in
/// x87 registers. A product with more than the 64 bits of such a register is rounded twice.
template <class Real>
bool qblMayBeRoundedTwice(Real value) {
    if (sizeof(void*) > 4 || sizeof value < sizeof(double)) return false;
    const Real magnitude = std::fabs(value);
    return magnitude >= Real(1e19) && magnitude <= Real(1e38);
}

/// Returns the same as qblReadAnyReal(), but is faster for most texts. Calls qblReadAnyReal() for
/// numbers that do not end within the first kShort characters or that an "e" without digits
/// follows, for words such as "nan", and for numbers that std::from_chars refuses or rounds
/// wrongly.
template <class Real>
[[gnu::always_inline]] inline const char* qblReadReal(const char* text, Real& value) {
    constexpr std::size_t kShort = 64;
    const char* const begin = *text == '+' && qblIsDigit(text[1]) ? text + 1 : text;
    const auto* const nul = static_cast<const char*>(std::memchr(begin, '\0', kShort));
    const char* const last = nul != nullptr ? nul : begin + kShort;
    const auto [end, problem] = std::from_chars(begin, last, value);
    if (problem == std::errc{} && end != begin + kShort && (*end | 0x20) != 'e' &&
        std::isfinite(value) && !qblMayBeRoundedTwice(value))
        return end;
    return qblReadAnyReal(text, value);
}

/// Calls strtod(3) in the C locale.
double qblStrtod(const char* text, char** end);

#endif
