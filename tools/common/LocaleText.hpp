#ifndef TOOLS_COMMON_LOCALETEXT_HPP
#define TOOLS_COMMON_LOCALETEXT_HPP

#include <string>

namespace tools {

/// The encoding of the terminal: the encoding of the locale in the first of LC_ALL, LC_CTYPE and
/// LANG that is set. A locale's name has its encoding after the dot; without a dot, the C library
/// knows the encoding of an installed locale. Encodings that the library does not know, or that
/// encode ASCII differently, are ignored.
/// @return UTF-8 if no encoding is found, and for C and POSIX
std::string localeEncoding();
/// The encoding that the locale names for texts, even if the library does not know it. US-ASCII if
/// no locale is set, and for C and POSIX.
std::string localeEncodingName();

/// Converts a text to the encoding of the locale. A character that the encoding lacks becomes \xHH
/// for each of its UTF-8 bytes, as in shown().
std::string localText(const std::string& utf8);

}  // namespace tools

#endif
