#ifndef QBLCORE_UTILITY_QBLBYTEORDER_H
#define QBLCORE_UTILITY_QBLBYTEORDER_H

#include <stdint.h>

#include "QBLCore/Frame/QBLExport.h"

/// @file
/// Conversions of numbers between the host's byte order and the network's, which is big-endian. In
/// the names, "h" stands for host, "n" for network, "l" for 32 bits and "s" for 16 bits.
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
