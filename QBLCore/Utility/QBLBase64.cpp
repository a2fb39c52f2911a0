#include "QBLCore/Utility/QBLBase64.h"

#include <climits>
#include <cstdint>

#include "QBLCore/Utility/internal/QBLBase64Kernels.hpp"

namespace {

void encode(const QBLBase64Alphabet& alphabet, const void* data, unsigned length, char* out) {
    if (out == nullptr) return;
    if (data == nullptr) length = 0;
    qblBase64Encode(qblBase64Kernels(), alphabet, static_cast<const unsigned char*>(data), length,
                    out);
}

int decode(const QBLBase64Alphabet& alphabet, const char* text, void* out, unsigned* outLength) {
    std::size_t length = 0;
    const bool good = text != nullptr && out != nullptr &&
                      qblBase64Decode(qblBase64Kernels(), alphabet, text,
                                      static_cast<unsigned char*>(out), length) &&
                      length <= UINT_MAX;
    if (outLength != nullptr) *outLength = good ? static_cast<unsigned>(length) : 0;
    return good ? 0 : 2;
}

}  // namespace

extern "C" {

unsigned QBLBase64EncodedSize(unsigned length) {
    const std::uint64_t size = (static_cast<std::uint64_t>(length) * 8 / 6 + 3) / 4 * 4 + 1;
    return size <= UINT_MAX ? static_cast<unsigned>(size) : 0;
}

void QBLBase64Encode(const void* data, unsigned length, char* out) {
    encode(kQBLBase64Standard, data, length, out);
}

int QBLBase64Decode(const char* text, void* out, unsigned* outLength) {
    return decode(kQBLBase64Standard, text, out, outLength);
}

unsigned QBLBase64URLEncodedSize(unsigned length) { return QBLBase64EncodedSize(length); }

void QBLBase64URLEncode(const void* data, unsigned length, char* out) {
    encode(kQBLBase64Url, data, length, out);
}

int QBLBase64URLDecode(const char* text, void* out, unsigned* outLength) {
    return decode(kQBLBase64Url, text, out, outLength);
}

}  // extern "C"
