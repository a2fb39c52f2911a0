// Converts the input in blocks by text streams, from and to the encodings that
// dependsOnTextAlone() accepts.
// Compares the output and the findings with those of ICU, which gets the whole input. The first
// bytes select the encoding, the policy and the sizes of the blocks.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "fuzz/support/StreamChecks.hpp"
#include "i18n/cpp/i18n_encoding_names.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kChoices = 4;
    if (size < kChoices) return 0;
    I18NConverter converter(I18NGetEncodingName(data[0] % I18NCountEncodings(), 0));
    if (!dependsOnTextAlone(converter)) return 0;
    const int policy = data[1] % (I18N_STOP + 1);
    converter.setBuiltInUnconvertibleInputSequenceCallback(policy);
    converter.setBuiltInUnconvertibleOutputSequenceCallback(policy);
    const std::string bytes(data + kChoices, data + size);
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(&text[0], bytes.data(), text.size() * sizeof(char16_t));
    if (differenceFromIcu(converter, bytes, text, {1U + data[2], 1U + data[3] % 16}) != nullptr)
        std::abort();
    return 0;
}
