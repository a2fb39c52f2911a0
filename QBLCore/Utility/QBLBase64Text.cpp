#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Utility/QBLBase64.h"
#include "QBLCore/Utility/QBLBase64.hpp"

namespace {

const char kTooLong[] = "The Base64 text would have 2^32 bytes or more.";

std::string encoded(const void* data, std::size_t length, unsigned (*sizeOf)(unsigned),
                    void (*encode)(const void*, unsigned, char*)) {
    if (data == nullptr) length = 0;
    const auto bytes = static_cast<unsigned>(length);
    const unsigned size = bytes == length ? sizeOf(bytes) : 0;
    if (size == 0) QBL_THROW(QBLOutOfMemoryError(0, kTooLong));
    QBL_ALLOC_TRY
    std::string text(size, '\0');
    encode(data, bytes, &text[0]);
    text.pop_back();  // the terminating NUL
    return text;
    QBL_ALLOC_CATCH
}

std::optional<std::string> decoded(std::string_view text,
                                   int (*decode)(const char*, void*, unsigned*)) {
    if (text.find('\0') != text.npos) return std::nullopt;
    QBL_ALLOC_TRY
    std::string bytes(text);  // decoded in place
    unsigned length = 0;
    if (decode(bytes.c_str(), &bytes[0], &length) != 0) return std::nullopt;
    bytes.resize(length);
    return bytes;
    QBL_ALLOC_CATCH
}

}  // namespace

std::string qblBase64Encode(const void* data, std::size_t length) {
    return encoded(data, length, QBLBase64EncodedSize, QBLBase64Encode);
}

std::string qblBase64URLEncode(const void* data, std::size_t length) {
    return encoded(data, length, QBLBase64URLEncodedSize, QBLBase64URLEncode);
}

std::optional<std::string> qblBase64Decode(std::string_view text) {
    return decoded(text, QBLBase64Decode);
}

std::optional<std::string> qblBase64URLDecode(std::string_view text) {
    return decoded(text, QBLBase64URLDecode);
}
