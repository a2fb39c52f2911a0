#ifndef QBLCORE_UTILITY_QBLBASE64_H
#define QBLCORE_UTILITY_QBLBASE64_H

#include "QBLCore/Frame/QBLExport.h"

/// @file
/// Base64 in two alphabets: the standard alphabet of RFC 4648, and a URL alphabet that is NOT the
/// RFC's: its last two characters are `_` and `~`, where the RFC has `-` and `_`. Both alphabets
/// pad with `=`.
///
/// The decoder is deliberately lax. In every locale it skips white space: blank, tab, vertical tab,
/// line feed, form feed and carriage return. It reads an `=` at any position as a zero. It reads
/// most characters outside the alphabet as other characters: it never refuses a character below
/// code 123. Validate decoded data by other means.
///
/// Threads: any thread may call any function.

#ifdef __cplusplus
extern "C" {
#endif

/// @return the size of the encoded text of length bytes, including its terminating NUL; 0 if this
///     size is 2^32 or more
QBL_API unsigned QBLBase64EncodedSize(unsigned length);
/// Encodes with padding.
/// @param data  null means no bytes
/// @param out  receives the null-terminated text; must not overlap the data; may be null
QBL_API void QBLBase64Encode(const void* data, unsigned length, char* out);
/// Decodes each group of 4 characters to 3 bytes. An `=` as third character drops the second byte,
/// an `=` as fourth character drops the third byte. The last group may be short: 2 characters give
/// 1 byte, 3 characters give 2 bytes.
/// @param out  a buffer of at least three quarters of the text's length. Nothing is written after
///     the last decoded byte. `out` may be equal to `text`, but must not overlap it in another way.
/// @param outLength  receives the number of bytes, 0 after a failure; may be null
/// @return 0 on success. 2 if the text has a character with code 123 or above or a last group of
///     one character, if text or out is null, or if the result has 2^32 bytes or more.
QBL_API int QBLBase64Decode(const char* text, void* out, unsigned* outLength);

/// The same functions for the URL alphabet. Its `~` is the only valid character above code 122.
QBL_API unsigned QBLBase64URLEncodedSize(unsigned length);
QBL_API void QBLBase64URLEncode(const void* data, unsigned length, char* out);
QBL_API int QBLBase64URLDecode(const char* text, void* out, unsigned* outLength);

#ifdef __cplusplus
}
#endif

#endif
