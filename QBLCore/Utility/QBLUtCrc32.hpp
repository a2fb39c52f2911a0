#ifndef QBLCORE_UTILITY_QBLUTCRC32_HPP
#define QBLCORE_UTILITY_QBLUTCRC32_HPP

#include "QBLCore/Frame/QBLExport.h"

/// The CRC-32 of IEEE 802.3, zip and PNG: polynomial 0x04C11DB7, reflected 0xEDB88320.
///
/// Threads: any thread may call any operation.
///
///     unsigned long crc = QBLUtCrc32::crc32(0, head, sizeof head);
///     crc = QBLUtCrc32::crc32(crc, body, sizeof body);  // of both, one behind the other
class QBL_API QBLUtCrc32 {
public:
    /// Goes on with a checksum.
    /// @param crc  that of the data before, 0 for none; only its lower 32 bits count
    /// @param data  null gives crc back, as it is
    /// @param length  in bytes
    static unsigned long crc32(unsigned long crc, const unsigned char* data, unsigned int length);

    /// @return 256 remainders: what each byte, as the lowest of the register, does to it in 8
    ///     steps; the library's own, as long as it is loaded
    static const unsigned int* getCrcTable();
};

#endif
