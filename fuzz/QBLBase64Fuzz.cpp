// The input as bytes and as a text, for the encoders and decoders of both alphabets at every level,
// against the definition letter by letter. The longest kept input sets the limit for new ones.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fuzz/support/Base64Checks.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size), text = bytes.c_str();
    eachBase64Level([&](const QBLBase64Kernels& kernels, const Base64Side& side, const auto&) {
        if (!encodesAsDefined(kernels, side, bytes)) std::abort();
        if (!decodesAsDefined(kernels, side, text)) std::abort();
    });
    return 0;
}
