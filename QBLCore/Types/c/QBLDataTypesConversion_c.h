#ifndef QBLCORE_TYPES_C_QBLDATATYPESCONVERSION_C_H
#define QBLCORE_TYPES_C_QBLDATATYPESCONVERSION_C_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Numbers from and to text, as C++ streams read and write them in the classic locale: whatever the
   process's locales are, the decimal point is a point and nothing groups the digits.

   Threads: any thread may call any of these at any time. */

/// Reads one number from the beginning of a text, after white space; what follows it does not
/// matter: "12abc" is 12. Integers are decimal: [+-] digits. Real numbers are
/// [+-] digits[.digits][e[+-]digits], where one of the two "digits" may be missing; neither
/// hexadecimal ones nor infinity are read.
///
/// What cannot be read stores what such a stream does:
/// - nothing, for a text that is empty or blank;
/// - 0 for one that does not begin with a number, and for an exponent without digits: "1e", "1e+x";
/// - the nearest number that there is for one beyond the range of the type. (A real number too
///   close to 0 is read, as 0 or what is nearest.)
/// @return 1 if a number was read, 0 if not
/// @throws QBLAssertError for a null pointer, "QBL_ASSERT(str != NULL);" or
///     "QBL_ASSERT(value != NULL);"
QBL_API int asciiToInt32(const char* str, int* value);
QBL_API int asciiToInt64(const char* str, long long* value);
QBL_API int asciiToFloat32(const char* str, float* value);
QBL_API int asciiToFloat64(const char* str, double* value);

/// Writes a number and a terminating zero. Real numbers have six significant digits, as by "%g" of
/// printf(3): "3.14159", "1e+06", "-2.5e-07", "inf", "-nan".
/// @param buf  has room for 12 bytes for int32ToAscii(), 21 for int64ToAscii(), and 14 for the
///     others
/// @return the characters written, without the zero
/// @throws QBLAssertError for a null pointer, "QBL_ASSERT(buf != NULL);"
QBL_API int int32ToAscii(char* buf, int value);
QBL_API int int64ToAscii(char* buf, long long value);
QBL_API int float32ToAscii(char* buf, float value);
QBL_API int float64ToAscii(char* buf, double value);

#ifdef __cplusplus
}
#endif

#endif
