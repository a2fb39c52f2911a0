// Converts the input with a converter of any encoding under any policy, and compares the result
// with that of ICU for the whole text. If the encoding has no states, also converts the text in
// pieces with the streaming form, into small destinations. The first bytes select the encoding, the
// policy and the sizes.
#include <algorithm>
#include <cstring>
#include <string>

#include "fuzz/support/ConverterChecks.hpp"
#include "i18n/cpp/i18n_encoding_names.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace converterchecks;
    Input input(data, size);
    const unsigned number = input.byte() + (input.byte() % 2) * 256;
    I18NConverter converter(
        I18NGetEncodingName(static_cast<int>(number) % I18NCountEncodings(), 0));
    const int policy = static_cast<int>(input.below(I18N_STOP + 1));
    converter.setBuiltInUnconvertibleInputSequenceCallback(policy);
    converter.setBuiltInUnconvertibleOutputSequenceCallback(policy);
    converter.useFallback(false);
    const std::size_t piece = 1 + input.below(16), room = 8 + input.below(64);
    const std::string bytes = input.rest();
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(&text[0], bytes.data(), text.size() * sizeof(char16_t));
    text.erase(std::remove(text.begin(), text.end(), u'\0'), text.end());

    const Converted wholeText = resultOf(decodedByIcu(converter, bytes));
    require(decoded(converter, bytes) == wholeText);
    const Converted wholeBytes = resultOf(encodedByIcu(converter, text));
    require(encoded(converter, text) == wholeBytes);
    if (!dependsOnTextAlone(converter)) return 0;
    require(decodedInPieces(converter, bytes, piece, room) == wholeText);
    require(encodedInPieces(converter, text, piece, room) == wholeBytes);
    return 0;
}
