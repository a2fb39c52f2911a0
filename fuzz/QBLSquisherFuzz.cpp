// Unsquishing of any text; of tokens with a right checksum around any length and stream; and of
// what squishing made. The first byte of the input chooses.
#include <zlib.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "QBLCore/Utility/QBLBase64.h"
#include "QBLCore/Utility/QBLSquisher.hpp"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

using Text = std::unique_ptr<char[]>;

/// Both steps into exactly the room that is asked for, and by the class; both have to agree.
void unsquish(const std::string& token) {
    QBLsqu_state state;
    unsigned size = 77;
    const int first = QBLsqu_unsquish1(token.c_str(), &state, &size);
    const Text back(QBLSquisher::unSquish(token.c_str()));
    if (first != 0) {
        require(first >= 1 && first <= 3 && state.buffer == nullptr && size == 77 && !back);
        return;
    }
    require(state.textLength <= 10000000 && size == state.textLength + 1);
    const Text out(new char[size]);
    const int second = QBLsqu_unsquish2(&state, out.get());
    require((second == 0) == (back != nullptr) && (second == 0) == (state.buffer == nullptr));
    if (second == 0) {
        require(std::strlen(out.get()) < size && std::strcmp(out.get(), back.get()) == 0);
    } else {
        require(second == Z_DATA_ERROR || second == Z_BUF_ERROR);
    }
    std::free(state.buffer);
}

/// Four bytes are the length, the rest stands for the stream; both as they are.
void unsquishStream(const std::string& bytes) {
    if (bytes.size() < 4) return;
    const auto* const stream = reinterpret_cast<const Bytef*>(bytes.data()) + 4;
    const uLong crc = crc32(0xFFFFFFFF, stream, static_cast<uInt>(bytes.size() - 4));
    std::string data = bytes.substr(0, 4);
    for (int shift = 24; shift >= 0; shift -= 8) data += static_cast<char>(crc >> shift);
    data += bytes.substr(4);
    const Text token(new char[QBLBase64URLEncodedSize(static_cast<unsigned>(data.size()))]);
    QBLBase64URLEncode(data.data(), static_cast<unsigned>(data.size()), token.get());
    unsquish(token.get());
}

void roundTrip(const char* text) {
    const Text token(QBLSquisher::squish(text));
    const Text back(QBLSquisher::unSquish(token.get()));
    require(std::strcmp(text, back.get()) == 0);
    const unsigned room = QBLsqu_squished_size(static_cast<unsigned>(std::strlen(text)));
    const Text out(new char[room]);
    const int code = QBLsqu_squish(text, out.get());
    require(code == (std::strlen(token.get()) < room ? 0 : Z_BUF_ERROR));
    require(std::strcmp(out.get(), code == 0 ? token.get() : "") == 0);
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
            roundTrip(bytes.c_str());
    }
    return 0;
}
