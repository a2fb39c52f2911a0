#ifndef QBLCORE_UTILITY_QBLBASE64_H
#define QBLCORE_UTILITY_QBLBASE64_H

#include "QBLCore/Frame/QBLExport.h"

/// @file
/// Base64 in two alphabets: the standard one of RFC 4648, and one for URLs that is NOT the RFC's:
/// its last two characters are `_` and `~`, where the RFC has `-` and `_`. Both pad with `=`.
///
/// The decoder is deliberately lax. It skips white space (blank, tab, vertical tab, line feed, form
/// feed and carriage return, whatever the locale), takes an `=` anywhere for a zero, and takes most
/// characters outside of its alphabet for others: what is below code 123 is never refused. Check
/// what you decode by other means.
///
/// Threads: any thread may call any function.

#ifdef __cplusplus
extern "C" {
#endif

/// @return the room for the text of length bytes with its NUL; 0 if that is not below 2^32
QBL_API unsigned QBLBase64EncodedSize(unsigned length);
/// Encodes with padding.
/// @param data  null counts as no bytes
/// @param out  receives the text and a NUL; must not overlap the data; null receives nothing
QBL_API void QBLBase64Encode(const void* data, unsigned length, char* out);
/// Decodes each 4 characters to 3 bytes; an `=` as the third drops the second byte, one as the
/// fourth the third byte. The last group may be short: 2 characters are 1 byte and 3 are 2.
/// @param out  room for three quarters of the characters; nothing behind the last byte is
///     written. It may be the very place of the text, but not overlap it otherwise.
/// @param outLength  receives the number of bytes, 0 after a failure; may be null
/// @return 0; 2 for a character from code 123 up, a single last one, null, or 2^32 bytes
QBL_API int QBLBase64Decode(const char* text, void* out, unsigned* outLength);

/// The same three in the alphabet for URLs; its `~` is the one valid character above code 122.
QBL_API unsigned QBLBase64URLEncodedSize(unsigned length);
QBL_API void QBLBase64URLEncode(const void* data, unsigned length, char* out);
QBL_API int QBLBase64URLDecode(const char* text, void* out, unsigned* outLength);

#ifdef __cplusplus
}
#endif

#endif
