// Computes the checksum of the input with each kernel that this processor runs, and compares it
// with a bit-by-bit computation. The first bytes of the input are the register at the start and the
// place where the public function divides the data.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "fuzz/support/Crc32Checks.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::uint32_t head[2];
    if (size < sizeof head) return 0;
    std::memcpy(head, data, sizeof head);
    data += sizeof head, size -= sizeof head;
    if (!wrongCrc32Levels(head[0], data, size, head[1] % (size + 1)).empty()) std::abort();
    return 0;
}
