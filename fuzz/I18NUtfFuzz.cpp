// Decodes the input as UTF-8 with every kernel that this processor runs. Compares the results with
// those of the plain decoder, which works sequence by sequence, and the units that a kernel finds
// inert in normalisation form C with ICU.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fuzz/support/Utf8Checks.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    eachUtf8Decoder([&](I18NDecoder kernel, const char*) {
        if (!decodesAsPlainly(kernel, bytes)) std::abort();
    });
    return 0;
}
