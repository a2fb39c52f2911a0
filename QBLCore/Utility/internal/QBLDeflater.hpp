#ifndef QBLCORE_UTILITY_INTERNAL_QBLDEFLATER_HPP
#define QBLCORE_UTILITY_INTERNAL_QBLDEFLATER_HPP

/// What zlib's compress2() does at level 9, to the byte, without setting up some 270 KB at each
/// call: the calling thread keeps them until it ends. A stream that cannot be kept serves once.
/// @param room  of out, in bytes
/// @param size  receives what was written
/// @return zlib's code; -5 if the room does not do
int qblDeflate(const char* text, unsigned length, unsigned char* out, unsigned room,
               unsigned& size);

#endif
