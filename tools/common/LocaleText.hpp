#ifndef TOOLS_COMMON_LOCALETEXT_HPP
#define TOOLS_COMMON_LOCALETEXT_HPP

#include <string>

namespace tools {

/// The encoding of the terminal: the encoding of the locale in the first of LC_ALL, LC_CTYPE and
/// LANG that is set. The part of the locale's name after the dot is the encoding. Without a dot,
/// the C library tells the encoding if the locale is installed. Ignores encodings that our library
/// does not know, and encodings in which ASCII characters have other bytes.
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
