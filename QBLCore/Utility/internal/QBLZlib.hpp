#ifndef QBLCORE_UTILITY_INTERNAL_QBLZLIB_HPP
#define QBLCORE_UTILITY_INTERNAL_QBLZLIB_HPP

// Both functions allocate with operator new, and return zlib's -4 if memory runs out.

/// Writes the same bytes as zlib's compress2() at level 9, but does not set up about 270 KB in each
/// call: the calling thread keeps this memory until it ends. If the thread cannot keep its stream,
/// each call uses a temporary stream.
/// @param room  the size of out in bytes
/// @param size  receives the number of bytes written
/// @return zlib's code; -5 if the room is too small
int qblDeflate(const char* text, unsigned length, unsigned char* out, unsigned room,
               unsigned& size);

/// Works like zlib's uncompress(), but refuses a text of one byte if the room is 0.
/// @param room  the size of out in bytes
/// @param size  receives the number of bytes written
/// @return zlib's code; -5 if the room is too small, -3 if the data is damaged or truncated
int qblInflate(const unsigned char* data, unsigned length, char* out, unsigned room,
               unsigned& size);

#endif
