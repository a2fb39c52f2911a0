// Decodes the input as UTF-8 with every kernel that this processor can run. Compares the results
// with the results of the plain decoder, which decodes one sequence at a time. Also asks ICU
// whether the characters that a kernel reports as inert are inert in normalisation form C.
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
