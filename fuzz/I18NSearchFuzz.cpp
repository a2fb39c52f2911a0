// Searches a text and matches it with LIKE patterns as the input says, and compares each result
// with that of a naive search (fuzz/support/SearchChecks.hpp).
#include "fuzz/support/SearchChecks.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    require(searchchecks::areAsNaive(input));
    return 0;
}
