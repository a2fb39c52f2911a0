#ifndef QBLCORE_UTILITY_INTERNAL_QBLZLIB_HPP
#define QBLCORE_UTILITY_INTERNAL_QBLZLIB_HPP

// Both take their memory from operator new; without it they give zlib's -4.

/// What zlib's compress2() does at level 9, to the byte, without setting up some 270 KB at each
/// call: the calling thread keeps them until it ends. A stream that cannot be kept serves once.
/// @param room  of out, in bytes
/// @param size  receives what was written
/// @return zlib's code; -5 if the room does not do
int qblDeflate(const char* text, unsigned length, unsigned char* out, unsigned room,
               unsigned& size);

/// What zlib's uncompress() does, except that it takes no byte too many into a room of 0.
/// @param room  of out, in bytes
/// @param size  receives what was written
/// @return zlib's code; -5 if the room does not do, -3 for what is damaged or cut off
int qblInflate(const unsigned char* data, unsigned length, char* out, unsigned room,
               unsigned& size);

#endif
