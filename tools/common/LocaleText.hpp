#ifndef TOOLS_COMMON_LOCALETEXT_HPP
#define TOOLS_COMMON_LOCALETEXT_HPP

#include <string>

namespace tools {

/// The encoding that terminals show: that of the first of LC_ALL, LC_CTYPE and LANG that is set. It
/// stands in the locale's name after the dot; where none stands, the C library says it for a locale
/// that is installed. Encodings that the library does not know, and those in which ASCII text has
/// other bytes, do not count.
/// @return UTF-8 if nothing else is known, for C and for POSIX
std::string localeEncoding();
/// The encoding that the locale names for texts, known or not; US-ASCII where no locale is set, for
/// C and for POSIX.
std::string localeEncodingName();

/// A text in the encoding of the locale. Characters that this lacks are written as shown() writes
/// bytes: \xHH for each byte that they have in UTF-8.
std::string localText(const std::string& utf8);

}  // namespace tools

#endif
