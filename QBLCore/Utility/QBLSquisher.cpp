#include "QBLCore/Utility/QBLSquisher.hpp"

#include <zlib.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "QBLCore/Utility/QBLBase64.h"
#include "QBLCore/Utility/QBLByteOrder.h"
#include "QBLCore/Utility/QBLUtCrc32.hpp"
#include "QBLCore/Utility/internal/QBLZlib.hpp"

// Each thread keeps a deflate stream, in internal/QBLZlib.cpp. All state in this file is local.

namespace {

constexpr unsigned kHeader = 8;
constexpr unsigned kLongestText = 10000000;
enum Failure { kNotBase64 = 1, kTooLong = 2, kBadChecksum = 3 };

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

unsigned narrow(std::uint64_t size) { return size <= UINT_MAX ? static_cast<unsigned>(size) : 0; }

void putNumber(unsigned char* at, unsigned long value) {
    const std::uint32_t bytes = qblh2nl(static_cast<std::uint32_t>(value));
    std::memcpy(at, &bytes, sizeof bytes);
}

unsigned getNumber(const unsigned char* at) {
    std::uint32_t bytes;
    std::memcpy(&bytes, at, sizeof bytes);
    return qbln2hl(bytes);
}

/// Deliberately starts with 0xFFFFFFFF, not with 0: existing tokens contain checksums of this kind.
unsigned long checksum(const unsigned char* data, unsigned length) {
    return QBLUtCrc32::crc32(0xFFFFFFFF, data, length);
}

/// The bytes that a token encodes.
struct Packed {
    std::unique_ptr<unsigned char[]> bytes;
    unsigned size = 0;
    unsigned formula = 0;  // QBLsqu_squished_size() of the text

    int pack(const char* text) {
        if (text == nullptr) return Z_STREAM_ERROR;
        const std::size_t length = std::strlen(text);
        if (length > UINT_MAX) return Z_BUF_ERROR;
        const auto n = static_cast<unsigned>(length);
        const unsigned room = QBLsqu_compressed_size(n);
        formula = QBLsqu_squished_size(n);
        if (room == 0 || formula == 0) return Z_BUF_ERROR;
        bytes.reset(new (std::nothrow) unsigned char[room]);
        if (!bytes) return Z_MEM_ERROR;
        const int code = qblDeflate(text, n, bytes.get() + kHeader, room - kHeader, size);
        putNumber(bytes.get(), n);
        putNumber(bytes.get() + 4, checksum(bytes.get() + kHeader, size));
        size += kHeader;
        return code;
    }
    unsigned tokenSize() const { return QBLBase64URLEncodedSize(size); }
};

int unpack(const char* token, QBLsqu_state& state) {
    if (token == nullptr) return kNotBase64;
    std::unique_ptr<unsigned char, Free> bytes(
        static_cast<unsigned char*>(std::malloc(std::strlen(token) + 1)));
    if (!bytes) return Z_MEM_ERROR;
    unsigned size = 0;
    if (QBLBase64URLDecode(token, bytes.get(), &size) != 0) return kNotBase64;
    if (size < kHeader ||
        checksum(bytes.get() + kHeader, size - kHeader) != getNumber(bytes.get() + 4))
        return kBadChecksum;
    const unsigned length = getNumber(bytes.get());
    if (length > kLongestText) return kTooLong;
    state = {bytes.release(), size, length};
    return 0;
}

}  // namespace

extern "C" {

unsigned QBLsqu_compressed_size(unsigned n) {
    return narrow(static_cast<std::uint64_t>(n) + n / 1000 + 25);
}

unsigned QBLsqu_squished_size(unsigned n) {
    const unsigned room = narrow(static_cast<std::uint64_t>(n) + n / 1000 + 16);
    return room != 0 ? QBLBase64URLEncodedSize(room) : 0;
}

int QBLsqu_squish(const char* text, char* out) {
    Packed packed;
    int code = packed.pack(text);
    if (code == Z_OK && packed.tokenSize() > packed.formula) code = Z_BUF_ERROR;
    if (out == nullptr) return Z_STREAM_ERROR;
    QBLBase64URLEncode(packed.bytes.get(), code == Z_OK ? packed.size : 0, out);
    return code;
}

int QBLsqu_unsquish1(const char* token, QBLsqu_state* state, unsigned* size) {
    if (state == nullptr) return Z_STREAM_ERROR;
    *state = {nullptr, 0, 0};
    const int code = unpack(token, *state);
    if (code == 0 && size != nullptr) *size = state->textLength + 1;
    return code;
}

int QBLsqu_unsquish2(QBLsqu_state* state, char* out) {
    if (state == nullptr || state->buffer == nullptr || out == nullptr ||
        state->bufferLength < kHeader)
        return Z_STREAM_ERROR;
    unsigned length = 0;
    const int code = qblInflate(state->buffer + kHeader, state->bufferLength - kHeader, out,
                                state->textLength, length);
    if (code != Z_OK) return code;
    out[length] = '\0';
    std::free(state->buffer);
    state->buffer = nullptr;
    return 0;
}

}  // extern "C"

char* QBLSquisher::squish(const char* text) {
    Packed packed;
    if (packed.pack(text) != Z_OK) return nullptr;
    const unsigned needed = packed.tokenSize();
    char* const token =
        new (std::nothrow) char[needed > packed.formula ? needed : packed.formula]();
    if (token != nullptr) QBLBase64URLEncode(packed.bytes.get(), packed.size, token);
    return token;
}

char* QBLSquisher::unSquish(const char* token) {
    QBLsqu_state state;
    unsigned size = 0;
    if (QBLsqu_unsquish1(token, &state, &size) != 0) return nullptr;
    std::unique_ptr<char[]> text(new (std::nothrow) char[static_cast<std::size_t>(size) + 1]());
    const int code = QBLsqu_unsquish2(&state, text.get());
    std::free(state.buffer);  // null after success
    return code == 0 ? text.release() : nullptr;
}
