#ifndef TOOLS_COMMON_UTF8_HPP
#define TOOLS_COMMON_UTF8_HPP

#include <cstddef>
#include <string>
#include <string_view>

namespace tools {

/// Decodes the code point at an offset and advances the offset past it.
/// @return -1, with the offset unchanged, if the bytes up to end do not begin with a well-formed
///     sequence (The Unicode Standard, table 3-7)
int nextCodePoint(const std::string& bytes, std::size_t& offset, std::size_t end);

/// Finds the first malformed sequence.
/// @return its offset; npos if all bytes are well-formed
std::size_t findIllFormed(const std::string& bytes, std::size_t begin, std::size_t end);
inline std::size_t findIllFormed(const std::string& bytes) {
    return findIllFormed(bytes, 0, bytes.size());
}

/// Requires: the code point is not a surrogate.
void appendCodePoint(std::string& out, unsigned codePoint);
/// Appends a text in UTF-16; omits lone surrogates.
void appendUtf16(std::string& out, std::u16string_view text);

}  // namespace tools

#endif
