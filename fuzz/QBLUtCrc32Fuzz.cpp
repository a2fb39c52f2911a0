// Computes the checksum of the input with each kernel that this processor can run, and compares it
// with the result of a bit-by-bit computation. The first bytes of the input are the register at the
// start, and the position at which the data is divided for the public function.
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
