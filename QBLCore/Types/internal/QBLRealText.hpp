#ifndef QBLCORE_TYPES_INTERNAL_QBLREALTEXT_HPP
#define QBLCORE_TYPES_INTERNAL_QBLREALTEXT_HPP

/// Writes a number as printf(3) does for "%.6g" or "%.9g" in the C locale, whatever the process's.
/// No zero is written. The longest is "-1.23456789e-308".
/// @param digits  6 or 9
/// @return the end of what was written
char* qblWriteReal(char* out, double value, int digits);

/// Reads a decimal number: [+-] digits, with a point before, between or behind them or without one,
/// then [e [+-] digits] in either case. The value is the nearest, ties go to the even one; infinity
/// beyond the range, as strtod(3) gives it in the C locale.
/// @return the end of the number; null if there is none, also for an exponent without digits, and
/// the
///     value is 0 then
template <class Real>
const char* qblReadReal(const char* text, Real& value);
extern template const char* qblReadReal(const char* text, float& value);
extern template const char* qblReadReal(const char* text, double& value);

/// strtod(3) in the C locale.
double qblStrtod(const char* text, char** end);

#endif
