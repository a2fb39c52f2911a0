#ifndef FUZZ_SUPPORT_TOKENS_HPP
#define FUZZ_SUPPORT_TOKENS_HPP

#include <zlib.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "QBLCore/Utility/QBLBase64.h"
#include "QBLCore/Utility/QBLSquisher.hpp"

/// Returns a token with any stream and any length.
/// @param wrong  bits of the checksum to flip; 0 makes a valid checksum
inline std::string tokenOf(const std::string& packed, unsigned long length,
                           unsigned long wrong = 0) {
    const auto* const bytes = reinterpret_cast<const Bytef*>(packed.data());
    const unsigned long crc = wrong ^ crc32(0xFFFFFFFF, bytes, static_cast<uInt>(packed.size()));
    std::string data;
    for (const unsigned long number : {length, crc})
        for (int shift = 24; shift >= 0; shift -= 8) data += static_cast<char>(number >> shift);
    data += packed;
    std::string token(QBLBase64URLEncodedSize(static_cast<unsigned>(data.size())), '\0');
    QBLBase64URLEncode(data.data(), static_cast<unsigned>(data.size()), &token[0]);
    return token.c_str();
}

inline std::string compressed(const std::string& text) {
    auto size = compressBound(static_cast<uLong>(text.size()));
    std::string packed(size, '\0');
    const int code =
        compress2(reinterpret_cast<Bytef*>(&packed[0]), &size,
                  reinterpret_cast<const Bytef*>(text.data()), static_cast<uLong>(text.size()), 9);
    return code == Z_OK ? packed.substr(0, size) : "zlib failed";
}

/// The results of both steps of unsquishing. The text may contain null bytes.
struct Unsquished {
    int first = 0, second = 0;
    std::string text;
    /// True if the steps agree with QBLSquisher and leave the state as documented.
    bool consistent = false;

    explicit Unsquished(const std::string& token) {
        QBLsqu_state state;
        unsigned size = 77;
        first = QBLsqu_unsquish1(token.c_str(), &state, &size);
        const std::unique_ptr<char[]> back(QBLSquisher::unSquish(token.c_str()));
        if (first != 0) {
            consistent = state.buffer == nullptr && size == 77 && !back;
            return;
        }
        // Exactly the required size. The filler 'm' shows where the text ends.
        const std::unique_ptr<char[]> out(new char[size]);
        std::memset(out.get(), 'm', size);
        second = QBLsqu_unsquish2(&state, out.get());
        consistent = size == state.textLength + 1 && (second == 0) == (state.buffer == nullptr) &&
                     (second == 0) == (back != nullptr);
        if (second == 0) {
            text.assign(out.get(), size);
            text.resize(text.find_last_not_of('m'));
            consistent = consistent && text.c_str() == std::string(back.get());
        }
        std::free(state.buffer);
    }
};

/// The result of squishing a text without null bytes.
struct Squished {
    std::string token;
    bool fits = false;  // the token fits into QBLsqu_squished_size() bytes
    /// True if three conditions hold: the token is the same as a token made from zlib's output; it
    /// unsquishes to the text; QBLsqu_squish() rejects it only if it does not fit.
    bool right = false;

    explicit Squished(const std::string& text) {
        const std::unique_ptr<char[]> made(QBLSquisher::squish(text.c_str()));
        if (!made) return;
        token = made.get();
        const unsigned room = QBLsqu_squished_size(static_cast<unsigned>(text.size()));
        fits = token.size() < room;
        const std::unique_ptr<char[]> out(new char[room]);
        const int code = QBLsqu_squish(text.c_str(), out.get());
        const Unsquished back(token);
        right = token == tokenOf(compressed(text), static_cast<unsigned long>(text.size())) &&
                code == (fits ? 0 : Z_BUF_ERROR) && out.get() == (fits ? token : "") &&
                back.consistent && back.first == 0 && back.second == 0 && back.text == text;
    }
};

#endif
