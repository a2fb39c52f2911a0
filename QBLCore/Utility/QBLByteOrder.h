#ifndef QBLCORE_UTILITY_QBLBYTEORDER_H
#define QBLCORE_UTILITY_QBLBYTEORDER_H

#include <stdint.h>

#include "QBLCore/Frame/QBLExport.h"

/// @file
/// Numbers between this host's order of bytes and the network's, which is big-endian: "h" is the
/// host, "n" the network, "l" is 32 bits and "s" is 16.
///
/// Threads: any thread may call any function.

#ifdef __cplusplus
extern "C" {
#endif

QBL_API uint32_t qblh2nl(uint32_t value);
QBL_API uint16_t qblh2ns(uint16_t value);
QBL_API uint32_t qbln2hl(uint32_t value);
QBL_API uint16_t qbln2hs(uint16_t value);

#ifdef __cplusplus
}
#endif

#endif
