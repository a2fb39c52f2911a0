#include <cstring>

#include "QBLCore/Utility/internal/QBLBase64Kernels.hpp"

namespace {

/// Returns the first three bytes as a number; also reads a fourth byte.
std::uint32_t threeBytes(const unsigned char* data) {
    std::uint32_t word;
    std::memcpy(&word, data, sizeof word);
    return __builtin_bswap32(word) >> 8;
}

std::size_t encode(const QBLBase64Alphabet& alphabet, const unsigned char* data, std::size_t length,
                   char* out) {
    const auto& pair = alphabet.pair;
    const auto four = [&pair](std::uint32_t bytes) {
        return pair[bytes >> 12] | static_cast<std::uint32_t>(pair[bytes & 4095]) << 16;
    };
    std::size_t done = 0;
    for (; length - done >= 7; done += 6, out += 8) {
        const std::uint32_t text[2] = {four(threeBytes(data + done)),
                                       four(threeBytes(data + done + 3))};
        std::memcpy(out, text, sizeof text);
    }
    for (; length - done >= 3; done += 3, out += 4) {
        const unsigned char* const at = data + done;
        const std::uint32_t text = four(static_cast<std::uint32_t>(at[0]) << 16 |
                                        static_cast<std::uint32_t>(at[1]) << 8 | at[2]);
        std::memcpy(out, &text, sizeof text);
    }
    return done;
}

std::uint32_t group(const QBLBase64Alphabet& alphabet, const unsigned char* text) {
    const auto& part = alphabet.part;
    return part[0][text[0]] | part[1][text[1]] | part[2][text[2]] | part[3][text[3]];
}

// Also decodes characters outside the alphabet, if the alphabet's table gives them a value. This is
// the value of a character of the alphabet.
std::size_t decode(const QBLBase64Alphabet& alphabet, const char* text, std::size_t length,
                   unsigned char* out) {
    const auto* const in = reinterpret_cast<const unsigned char*>(text);
    std::size_t done = 0;
    for (; length - done >= 8; done += 8, out += 6) {
        const std::uint32_t a = group(alphabet, in + done), b = group(alphabet, in + done + 4);
        if (((a | b) & alphabet.kOther) != 0) break;
        const std::uint32_t first = a | b << 24;
        const auto last = static_cast<std::uint16_t>(b >> 8);
        std::memcpy(out, &first, sizeof first);
        std::memcpy(out + 4, &last, sizeof last);
    }
    for (; length - done >= 4; done += 4, out += 3) {
        const std::uint32_t bytes = group(alphabet, in + done);
        if ((bytes & alphabet.kOther) != 0) break;
        std::memcpy(out, &bytes, 3);
    }
    return done;
}

}  // namespace

constexpr QBLBase64Alphabet kQBLBase64Standard('+', '/');
constexpr QBLBase64Alphabet kQBLBase64Url('_', '~');
constexpr QBLBase64Kernels kQBLBase64Scalar = {&encode, &decode};
