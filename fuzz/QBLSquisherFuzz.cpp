// Unsquishes one of three kinds of token, selected by the first byte of the input: arbitrary text,
// a token with a valid checksum but arbitrary length and stream, or the result of squishing.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "fuzz/support/Tokens.hpp"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

Unsquished unsquish(const std::string& token) {
    Unsquished got(token);
    require(got.consistent && got.first >= 0 && got.first <= 3);
    require(got.second == 0 || got.second == Z_DATA_ERROR || got.second == Z_BUF_ERROR);
    return got;
}

/// Makes a token from the input: the first four bytes are the length, the other bytes are the
/// stream. Compares the result with zlib's result. zlib gets room for one more byte, so that it
/// detects a stream that is too long.
void unsquishStream(const std::string& bytes) {
    if (bytes.size() < 4) return;
    unsigned long length = 0;
    for (int i = 0; i < 4; ++i) length = length << 8 | static_cast<unsigned char>(bytes[i]);
    const std::string stream = bytes.substr(4);
    const Unsquished got = unsquish(tokenOf(stream, length));
    require(got.first == (length > 10000000 ? 2 : 0));
    if (got.first != 0) return;
    const std::unique_ptr<char[]> text(new char[length + 1]);
    auto size = static_cast<uLongf>(length + 1);
    const int code = uncompress(reinterpret_cast<Bytef*>(text.get()), &size,
                                reinterpret_cast<const Bytef*>(stream.data()),
                                static_cast<uLong>(stream.size()));
    require((got.second == 0) == (code == Z_OK && size <= length));
    require(got.second != 0 || got.text == std::string(text.get(), size));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string bytes(data + 1, data + size);
    switch (*data % 3) {
        case 0:
            unsquish(bytes.c_str());
            break;
        case 1:
            unsquishStream(bytes);
            break;
        default:
            require(Squished(bytes.c_str()).right);
    }
    return 0;
}
