// Encodes the input as bytes and decodes it as a text, with both alphabets and every kernel that
// this processor can run. Compares the results with a model that processes one letter at a time.
// The longest input of the corpus sets libFuzzer's limit for the length of new inputs.
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
