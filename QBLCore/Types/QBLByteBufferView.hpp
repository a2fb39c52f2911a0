#ifndef QBLCORE_TYPES_QBLBYTEBUFFERVIEW_HPP
#define QBLCORE_TYPES_QBLBYTEBUFFERVIEW_HPP

#include <climits>
#include <cstddef>
#include <string_view>
#include <type_traits>
#include <utility>

#include "QBLCore/Types/QBLByteBuffer.hpp"

/// @file
/// Conversions between QBLByteBuffer and the contiguous ranges of the standard library.
///
/// Threads: as for QBLByteBuffer.

/// True for a class with data() and size() whose elements are characters or std::byte, such as
/// std::string_view, std::vector<char> and std::span<std::byte>. False for a class that a buffer
/// appends without this header.
template <class Bytes, class = void>
constexpr bool kQBLIsByteRange = false;
template <class Bytes>
constexpr bool kQBLIsByteRange<Bytes, std::void_t<decltype(*std::declval<const Bytes&>().data()),
                                                  decltype(std::declval<const Bytes&>().size())>> =
    sizeof(*std::declval<const Bytes&>().data()) == 1 &&
    std::is_trivially_copyable_v<std::decay_t<decltype(*std::declval<const Bytes&>().data())>> &&
    !std::is_convertible_v<const Bytes&, const QBLByteBuffer&> &&
    !std::is_convertible_v<const Bytes&, const char*> &&
    !std::is_convertible_v<const Bytes&, double>;

/// Appends the bytes of a range, which may be part of the buffer.
template <class Bytes, std::enable_if_t<kQBLIsByteRange<Bytes>, int> = 0>
QBLByteBuffer& operator<<(QBLByteBuffer& buffer, const Bytes& bytes) {
    const std::size_t length = bytes.size();
    if (length > UINT_MAX) buffer.reserve(UINT_MAX);  // throws: this is above the limit
    return buffer.appendChars(reinterpret_cast<const char*>(bytes.data()),
                              static_cast<unsigned int>(length));
}

/// Returns the content as a view, valid until the buffer changes.
inline std::string_view qblView(const QBLByteBuffer& buffer) {
    return std::string_view(buffer.data(), buffer.size());
}

#endif
