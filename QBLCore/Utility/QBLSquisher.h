#ifndef QBLCORE_UTILITY_QBLSQUISHER_H
#define QBLCORE_UTILITY_QBLSQUISHER_H

#include "QBLCore/Frame/QBLExport.h"

/// @file
/// Squishing turns a text into a compact token with a checksum. A token can be part of a URL.
///
/// A token is the Base64 text of these bytes:
/// - the length of the text in bytes (4 bytes, big-endian)
/// - QBLUtCrc32::crc32() of the zlib stream, with 0xFFFFFFFF as start value (4 bytes, big-endian)
/// - the text as a zlib stream of level 9
///
/// The alphabet is the one of QBLBase64URLEncode(): its last two characters are `_` and `~`, NOT
/// the characters of RFC 4648. The decoder is lax: different tokens may decode to the same text. A
/// text of more than 10,000,000 bytes can be squished, but not unsquished.
///
/// Each thread that squishes keeps about 270 KB for compression until it ends. This memory contains
/// up to 64 KB of the texts that the thread squished last, unencrypted. Do not squish texts that
/// must not stay in memory.
///
/// Threads: any thread may call any function; one thread at a time may use a state.

#ifdef __cplusplus
extern "C" {
#endif

/// @return the size of a buffer for compressing n bytes; 0 if this size is 2^32 or more
QBL_API unsigned QBLsqu_compressed_size(unsigned n);
/// @return the size of a buffer for the token of a text of n bytes, with the terminating NUL; 0 if
///     this size is 2^32 or more. This size is always enough for an ASCII text. Other texts of
///     fewer than 3,000 bytes may need up to 4 bytes more if they cannot be compressed;
///     QBLsqu_squish() refuses them.
QBL_API unsigned QBLsqu_squished_size(unsigned n);

/// Squishes a text.
/// @param out  a buffer of QBLsqu_squished_size(strlen(text)) bytes; receives the token, or an
///     empty text on failure
/// @return 0, or a code of zlib: -5 if the token does not fit, or if the text is too long for
///     QBLsqu_squished_size(); -4 if memory runs out; -2 if the text or out is null
QBL_API int QBLsqu_squish(const char* text, char* out);

/// A token between the two steps of unsquishing.
struct QBLsqu_state {
    unsigned char* buffer;  ///< the bytes that the token encodes, from malloc(3), or null
    unsigned bufferLength;  ///< the size of the buffer in bytes
    unsigned textLength;    ///< the length of the text in bytes, as the token declares it
};

/// First step: decodes a token and checks it. QBLsqu_unsquish2() frees the buffer. If you do not
/// call QBLsqu_unsquish2(), free the buffer with free(3).
/// @param state  always overwritten, so free its old buffer before the call. After a failure, it
///     has no buffer to free.
/// @param size  receives the size of the text, including its terminating NUL; may be null
/// @return 0; 1 if the token is null or not Base64; 2 if the text is longer than 10,000,000 bytes;
///     3 if the checksum is wrong or missing; -4 if memory runs out; -2 if the state is null
QBL_API int QBLsqu_unsquish1(const char* token, struct QBLsqu_state* state, unsigned* size);

/// Second step: decompresses the text and frees the buffer. If the text is shorter than the token
/// declares, the terminating NUL follows its real end. Bytes after the zlib stream are ignored. If
/// the text contains NULs, they are also stored. Tokens of QBLsqu_squish() never contain such a
/// text.
/// @param out  receives the text and a NUL; its content is not valid after a failure
/// @return 0, or a code of zlib: -3 or -5 if the data is damaged, truncated, or longer than the
///     token declares; -4 if memory runs out; -2 if the state, its buffer or out is null. After a
///     failure, the caller still owns the buffer.
QBL_API int QBLsqu_unsquish2(struct QBLsqu_state* state, char* out);

#ifdef __cplusplus
}
#endif

#endif
