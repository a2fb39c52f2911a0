#ifndef QBLCORE_TYPES_INTERNAL_QBLREALTEXT_HPP
#define QBLCORE_TYPES_INTERNAL_QBLREALTEXT_HPP

/// Writes a number as printf(3) does for "%.6g" or "%.9g" in the C locale, whatever the locale of
/// the process. Writes no terminating NUL. The longest text is as long as "-1.23456789e-308".
/// @param digits  6 or 9
/// @return the end of the text
char* qblWriteReal(char* out, double value, int digits);

/// Reads a decimal number: [+-] and digits with an optional point before, between or after them,
/// then optionally e or E, [+-] and digits. Rounds to the nearest value, ties to even, and gives
/// infinity beyond the range, as strtod(3) does in the C locale.
/// @return the end of the number; null if the text does not begin with a number or the exponent has
///     no digits, and the value is 0 then
template <class Real>
const char* qblReadReal(const char* text, Real& value);
extern template const char* qblReadReal(const char* text, float& value);
extern template const char* qblReadReal(const char* text, double& value);

/// strtod(3) in the C locale.
double qblStrtod(const char* text, char** end);

#endif
