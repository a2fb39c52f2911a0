#ifndef QBLCORE_UTILITY_QBLUTCRC32_HPP
#define QBLCORE_UTILITY_QBLUTCRC32_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// The CRC-32 of IEEE 802.3, zip and PNG: polynomial 0x04C11DB7, reflected 0xEDB88320.
///
/// Threads: any thread may call any operation.
///
///     unsigned long crc = QBLUtCrc32::crc32(0, head, sizeof head);
///     crc = QBLUtCrc32::crc32(crc, body, sizeof body);  // of head followed by body
class QBL_API QBLUtCrc32 {
public:
    /// Continues a checksum with more data.
    /// @param crc  the checksum of the data so far; 0 at the start. Only the lower 32 bits count.
    /// @param data  if null, the result is crc, unchanged
    /// @param length  in bytes
    static unsigned long crc32(unsigned long crc, const unsigned char* data, unsigned int length);

    /// @return the table of 256 remainders. Entry n is the register after 8 steps from the value n.
    ///     The table belongs to the library and is valid while the library is loaded.
    static const unsigned int* getCrcTable();
};

#endif
