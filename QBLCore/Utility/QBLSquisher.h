#ifndef QBLCORE_UTILITY_QBLSQUISHER_H
#define QBLCORE_UTILITY_QBLSQUISHER_H

#include "QBLCore/Frame/QBLExport.h"

/// @file
/// Squishing: a text becomes a compact token with a checksum that can stand in a URL.
///
/// A token is Base64 in the alphabet of QBLBase64URLEncode(), whose last two characters are `_` and
/// `~`, NOT those of RFC 4648, of the text's length in bytes (4 bytes, big-endian), the CRC-32 of
/// what follows, begun with 0xFFFFFFFF (4 bytes, big-endian), and the text as a zlib stream of
/// level 9. The decoder of that alphabet is lax: several texts that look different may be the same
/// token. A text above 10,000,000 bytes can be squished, but not unsquished.
///
/// Each thread that squishes keeps some 270 KB to compress with until it ends, and in them up to
/// 64 KB of the texts it squished last, in clear: do not squish what memory must not hold.
///
/// Threads: any thread may call any function; a state belongs to one at a time.

#ifdef __cplusplus
extern "C" {
#endif

/// @return the room that compressing n bytes needs; 0 if that is not below 2^32
QBL_API unsigned QBLsqu_compressed_size(unsigned n);
/// @return the room that QBLsqu_squish() asks for the token of an n-byte text, with its NUL; 0 if
///     that is not below 2^32. Always enough for ASCII; other texts of fewer than 3,000 bytes that
///     cannot be compressed may need up to 4 more, and are refused.
QBL_API unsigned QBLsqu_squished_size(unsigned n);

/// @param out  room for QBLsqu_squished_size(strlen(text)); receives the token, or an empty text
/// @return 0, or zlib's codes: -5 if the token is longer than that room, or the text too long for
///     it to be told; -4 without memory; -2 for a null text, and for a null out
QBL_API int QBLsqu_squish(const char* text, char* out);

/// A token between the steps of unsquishing.
struct QBLsqu_state {
    unsigned char* buffer;  ///< what the token encodes, from malloc; null if there is none
    unsigned bufferLength;  ///< of it, in bytes
    unsigned textLength;    ///< of the text, in bytes, as the token has it
};

/// First step: decodes and checks. The second one releases the buffer; instead of it, call free().
/// @param state  set in any case, without a look at what it held: release that before. Nothing of
///     it is to be released after a failure.
/// @param size  receives the room that the text and its NUL need; may be null
/// @return 0; 1 if it is not Base64, or null; 2 if the text is above 10,000,000 bytes; 3 if the
///     checksum is wrong or there is none; -4 without memory; -2 for a null state
QBL_API int QBLsqu_unsquish1(const char* token, struct QBLsqu_state* state, unsigned* size);

/// Second step: inflates the text and releases the buffer. A token may tell a longer text than it
/// has; the text ends where it really does. What stands behind the zlib stream is not looked at.
/// No token of QBLsqu_squish() has a NUL in its text; of one that has, all is stored.
/// @param out  receives the text and a NUL; what it has after a failure is no text
/// @return 0, or zlib's code, with the buffer kept: -3 or -5 if the data is damaged, cut off, or
///     longer than the token tells; -4 without memory; -2 without a buffer, and for null
QBL_API int QBLsqu_unsquish2(struct QBLsqu_state* state, char* out);

#ifdef __cplusplus
}
#endif

#endif
