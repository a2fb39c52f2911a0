#include "QBLCore/Utility/QBLByteOrder.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "every function swaps bytes");

extern "C" {

uint32_t qblh2nl(uint32_t value) { return __builtin_bswap32(value); }
uint16_t qblh2ns(uint16_t value) { return __builtin_bswap16(value); }
uint32_t qbln2hl(uint32_t value) { return __builtin_bswap32(value); }
uint16_t qbln2hs(uint16_t value) { return __builtin_bswap16(value); }

}  // extern "C"
