// Edits a string and a model of it as the input says (fuzz/support/StringChecks.hpp). After each
// edit, the text, its bytes in UTF-8 and UTF-16, its counts and its storage must be as expected.
#include "fuzz/support/StringChecks.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    require(stringchecks::followsModel(input, false, {}));
    return 0;
}
