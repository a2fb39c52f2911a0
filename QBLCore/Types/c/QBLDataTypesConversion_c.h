#ifndef QBLCORE_TYPES_C_QBLDATATYPESCONVERSION_C_H
#define QBLCORE_TYPES_C_QBLDATATYPESCONVERSION_C_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Conversions between numbers and text, as C++ streams do them in the classic locale. In every
   locale of the process, the decimal separator is a point and digits are not grouped.

   Threads: any thread may call any function at any time. */

/// Reads a number at the beginning of a text, after optional white space. Ignores the rest of the
/// text: "12abc" is 12. Integers are decimal: [+-]digits. Real numbers have the form
/// [+-]digits[.digits][e[+-]digits]; the digits before or after the point may be missing.
/// Hexadecimal numbers, infinity and NaN are not read.
///
/// If reading fails, the value is the one that such a stream stores:
/// - unchanged, if the text is empty or blank;
/// - 0, if the text does not begin with a number or has an exponent without digits: "1e", "1e+x";
/// - the nearest number of the type, if the number is beyond its range. (A real number that is too
///   close to 0 for the type is not a failure: the value is 0 or the nearest number.)
/// @return 1 if a number was read, otherwise 0
/// @throws QBLAssertError for a null pointer, with the text "QBL_ASSERT(str != NULL);" or
///     "QBL_ASSERT(value != NULL);"
QBL_API int asciiToInt32(const char* str, int* value);
QBL_API int asciiToInt64(const char* str, long long* value);
QBL_API int asciiToFloat32(const char* str, float* value);
QBL_API int asciiToFloat64(const char* str, double* value);

/// Writes a number as null-terminated text. Real numbers have six significant digits, as "%g" of
/// printf(3) writes them: "3.14159", "1e+06", "-2.5e-07", "inf", "-nan".
/// @param buf  a buffer of at least 12 bytes for int32ToAscii(), 21 for int64ToAscii(), and 14 for
///     the other two functions
/// @return the number of characters, without the terminating NUL
/// @throws QBLAssertError for a null pointer, with the text "QBL_ASSERT(buf != NULL);"
QBL_API int int32ToAscii(char* buf, int value);
QBL_API int int64ToAscii(char* buf, long long value);
QBL_API int float32ToAscii(char* buf, float value);
QBL_API int float64ToAscii(char* buf, double value);

#ifdef __cplusplus
}
#endif

#endif
