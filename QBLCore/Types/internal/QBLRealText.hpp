#ifndef QBLCORE_TYPES_INTERNAL_QBLREALTEXT_HPP
#define QBLCORE_TYPES_INTERNAL_QBLREALTEXT_HPP

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
const char* qblReadReal(const char* text, Real& value);
extern template const char* qblReadReal(const char* text, float& value);
extern template const char* qblReadReal(const char* text, double& value);

/// Calls strtod(3) in the C locale.
double qblStrtod(const char* text, char** end);

#endif
