#ifndef QBLCORE_UTILITY_QBLBASE64_HPP
#define QBLCORE_UTILITY_QBLBASE64_HPP

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#if __cplusplus > 201703L
#include <span>
#endif

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// @file
/// The functions of QBLBase64.h for the types of the standard library. The two alphabets and the
/// lax decoder are described there.
///
/// Errors: QBLOutOfMemoryError, also for a text of 2^32 bytes or more.
///
/// Threads: any thread may call any function.

/// Returns the text of the bytes, with padding.
/// @param data  null means no bytes
QBL_API std::string qblBase64Encode(const void* data, std::size_t length);
QBL_API std::string qblBase64URLEncode(const void* data, std::size_t length);
inline std::string qblBase64Encode(std::string_view bytes) {
    return qblBase64Encode(bytes.data(), bytes.size());
}
inline std::string qblBase64URLEncode(std::string_view bytes) {
    return qblBase64URLEncode(bytes.data(), bytes.size());
}
#ifdef __cpp_lib_span
inline std::string qblBase64Encode(std::span<const std::byte> bytes) {
    return qblBase64Encode(bytes.data(), bytes.size());
}
inline std::string qblBase64URLEncode(std::span<const std::byte> bytes) {
    return qblBase64URLEncode(bytes.data(), bytes.size());
}
#endif

/// Returns the bytes of a text, which need not be null-terminated.
/// @return nothing if QBLBase64Decode() refuses the text, or if the text contains a NUL
QBL_API std::optional<std::string> qblBase64Decode(std::string_view text);
QBL_API std::optional<std::string> qblBase64URLDecode(std::string_view text);

#endif
