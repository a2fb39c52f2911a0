// Base64 at every level of this processor, and by the public functions, checked against the
// definition letter by letter: what is decoded, whether it can be, and the way there and back.
#include "QBLCore/Utility/QBLBase64.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "QBLCore/Utility/internal/QBLBase64Kernels.hpp"
#include "fuzz/support/Base64Model.hpp"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

/// Memory of exactly this size, so that a sanitizer sees a byte too many.
using Room = std::unique_ptr<char[]>;

struct Side {
    const QBLBase64Alphabet& alphabet;
    Base64Model model;
    void (*encode)(const void*, unsigned, char*);
    int (*decode)(const char*, void*, unsigned*);
};

const unsigned char* bytesOf(const std::string& data) {
    return reinterpret_cast<const unsigned char*>(data.data());
}

void decodeAt(const QBLBase64Kernels& kernels, const Side& side, const std::string& text) {
    std::string expected, copy = text;
    const bool good = side.model.decode(text, expected);
    const Room room(new char[expected.size()]);
    std::size_t length = 0;
    if (!good) {
        auto* const place = reinterpret_cast<unsigned char*>(&copy[0]);
        require(!qblBase64Decode(kernels, side.alphabet, copy.c_str(), place, length));
        return;
    }
    auto* const out = reinterpret_cast<unsigned char*>(room.get());
    require(qblBase64Decode(kernels, side.alphabet, text.c_str(), out, length));
    require(std::string(room.get(), length) == expected);
    unsigned again = 0;
    require(side.decode(copy.c_str(), &copy[0], &again) == 0);
    require(copy.substr(0, again) == expected);
}

void encodeAt(const QBLBase64Kernels& kernels, const Side& side, const std::string& data) {
    const auto size = static_cast<unsigned>(data.size());
    const Room room(new char[QBLBase64EncodedSize(size)]);
    qblBase64Encode(kernels, side.alphabet, bytesOf(data), size, room.get());
    const std::string text = room.get();
    require(text == side.model.encode(data) && text.size() + 1 == QBLBase64EncodedSize(size));
    side.encode(data.data(), size, room.get());
    require(text == room.get());
    std::string back;
    require(side.model.decode(text, back) && back == data);
    decodeAt(kernels, side, text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Side sides[] = {{kQBLBase64Standard, {'+', '/'}, &QBLBase64Encode, &QBLBase64Decode},
                          {kQBLBase64Url, {'_', '~'}, &QBLBase64URLEncode, &QBLBase64URLDecode}};
    const std::string bytes(data, data + size), text = bytes.c_str();
    for (const Side& side : sides) {
        for (const QBLBase64Kernels* kernels :
             {&kQBLBase64Scalar, &kQBLBase64Ssse3, &kQBLBase64Avx2}) {
            if (kernels == &kQBLBase64Ssse3 && !__builtin_cpu_supports("ssse3")) continue;
            if (kernels == &kQBLBase64Avx2 && !__builtin_cpu_supports("avx2")) continue;
            encodeAt(*kernels, side, bytes);
            decodeAt(*kernels, side, text);
        }
    }
    return 0;
}
