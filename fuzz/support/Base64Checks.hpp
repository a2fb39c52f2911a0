#ifndef FUZZ_SUPPORT_BASE64CHECKS_HPP
#define FUZZ_SUPPORT_BASE64CHECKS_HPP

#include <algorithm>
#include <memory>
#include <string>

#include "QBLCore/Utility/QBLBase64.h"
#include "QBLCore/Utility/internal/QBLBase64Kernels.hpp"
#include "fuzz/support/Base64Model.hpp"

/// One of the two alphabets: its definitions in the library and in the model, and the public
/// functions for it.
struct Base64Side {
    const char* name;
    const QBLBase64Alphabet& alphabet;
    Base64Model model;
    void (*encode)(const void*, unsigned, char*);
    int (*decode)(const char*, void*, unsigned*);
};

/// Calls body(kernels, side, name) for both alphabets and each kernel that this processor can run.
/// @return the names of the kernels that this processor cannot run
template <class Body>
std::string eachBase64Level(Body body) {
    const Base64Side sides[] = {
        {"standard", kQBLBase64Standard, {'+', '/'}, &QBLBase64Encode, &QBLBase64Decode},
        {"URL", kQBLBase64Url, {'_', '~'}, &QBLBase64URLEncode, &QBLBase64URLDecode}};
    const struct {
        const char* name;
        const QBLBase64Kernels& kernels;
        bool runs;
    } levels[] = {{"scalar", kQBLBase64Scalar, true},
                  {"SSSE3", kQBLBase64Ssse3, __builtin_cpu_supports("ssse3") != 0},
                  {"AVX2", kQBLBase64Avx2, __builtin_cpu_supports("avx2") != 0},
                  {"VBMI", kQBLBase64Vbmi, qblBase64HasVbmi()}};
    std::string missing;
    for (const auto& level : levels) {
        if (!level.runs) missing += std::string(level.name) + ' ';
        for (const Base64Side& side : sides)
            if (level.runs) body(level.kernels, side, std::string(level.name) + ' ' + side.name);
    }
    return missing;
}

/// Returns true if the kernels and the public function decode a text as the model does. Decodes
/// into memory of exactly the right size, so that a sanitizer detects an extra byte. Also decodes
/// in place; then the bytes after the result must not change.
inline bool decodesAsDefined(const QBLBase64Kernels& kernels, const Base64Side& side,
                             const std::string& text) {
    std::string expected, copy = text;
    const bool good = side.model.decode(text, expected);
    std::size_t length = 0;
    auto* const place = reinterpret_cast<unsigned char*>(&copy[0]);
    if (qblBase64Decode(kernels, side.alphabet, copy.c_str(), place, length) != good) return false;
    unsigned size = 77;
    if (!good) {
        copy = text;
        return side.decode(copy.c_str(), &copy[0], &size) == 2 && size == 0;
    }
    if (copy != expected + text.substr(expected.size()) || length != expected.size()) return false;
    const std::unique_ptr<unsigned char[]> room(new unsigned char[length]);
    if (!qblBase64Decode(kernels, side.alphabet, text.c_str(), room.get(), length)) return false;
    if (std::string(room.get(), room.get() + length) != expected) return false;
    return side.decode(text.c_str(), room.get(), &size) == 0 &&
           std::string(room.get(), room.get() + size) == expected;
}

/// Returns true if the kernels and the public function encode bytes as the model does, and the
/// result decodes to the same bytes.
inline bool encodesAsDefined(const QBLBase64Kernels& kernels, const Base64Side& side,
                             const std::string& data) {
    const auto size = static_cast<unsigned>(data.size());
    const std::unique_ptr<char[]> room(new char[QBLBase64EncodedSize(size)]);
    const std::unique_ptr<unsigned char[]> block(new unsigned char[size]);
    std::copy(data.begin(), data.end(), block.get());
    qblBase64Encode(kernels, side.alphabet, block.get(), size, room.get());
    const std::string text = room.get();
    if (text != side.model.encode(data) || text.size() + 1 != QBLBase64EncodedSize(size))
        return false;
    side.encode(data.data(), size, room.get());
    std::string back;
    return text == room.get() && side.model.decode(text, back) && back == data &&
           decodesAsDefined(kernels, side, text);
}

#endif
