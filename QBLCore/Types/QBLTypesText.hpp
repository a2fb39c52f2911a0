#ifndef QBLCORE_TYPES_QBLTYPESTEXT_HPP
#define QBLCORE_TYPES_QBLTYPESTEXT_HPP

#include <ostream>
#include <string>
#include <string_view>

#include "QBLCore/Types/QBLByteBufferView.hpp"
#include "QBLCore/Types/QBLVariant.hpp"

/// @file
/// Buffers and variants for streams and formatters.
///
/// Errors: std::bad_alloc.
///
/// Threads: as for the objects.

/// Returns the bytes of a buffer.
inline std::string qblText(const QBLByteBuffer& buffer) { return std::string(qblView(buffer)); }

/// Returns the value as QBLVariant::getValue(char*, unsigned long) writes it; the whole text of a
/// string, and an empty text for a null string.
inline std::string qblText(const QBLVariant& variant) {
    char* text = nullptr;
    char number[32];
    if (!variant.getValue(text) && variant.getValue(number, sizeof number)) text = number;
    return text != nullptr ? text : "";
}

inline std::ostream& operator<<(std::ostream& out, const QBLByteBuffer& buffer) {
    return out << qblView(buffer);
}
inline std::ostream& operator<<(std::ostream& out, const QBLVariant& variant) {
    return out << qblText(variant);
}

#endif
