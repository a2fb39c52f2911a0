#ifndef TOOLS_COMMON_UTF8_HPP
#define TOOLS_COMMON_UTF8_HPP

#include <cstddef>
#include <string>

namespace tools {

/// The code point at an offset, which is moved behind it.
/// @return -1, with the offset as it was, if the bytes up to end do not begin with a well-formed
///     sequence (The Unicode Standard, table 3-7)
int nextCodePoint(const std::string& bytes, std::size_t& offset, std::size_t end);

/// Where bytes begin that are not well-formed. @return npos if there are none
std::size_t findIllFormed(const std::string& bytes, std::size_t begin, std::size_t end);
inline std::size_t findIllFormed(const std::string& bytes) {
    return findIllFormed(bytes, 0, bytes.size());
}

/// Requires: a code point that is not a surrogate.
void appendCodePoint(std::string& out, unsigned codePoint);

}  // namespace tools

#endif
