#ifndef TOOLS_COMMON_SHOWN_HPP
#define TOOLS_COMMON_SHOWN_HPP

#include <string>

#include "tools/common/MessageText.hpp"

namespace tools {

/// A name or text as messages show it: on one line, and without a way to control a terminal or to
/// change the order of what is read. Bytes that are not UTF-8, control and format characters
/// (except U+200C and U+200D, which words need), line and paragraph separators, noncharacters, and
/// a backslash before an x are written as \xHH, byte by byte.
std::string shown(const std::string& name);
Details shown(const Details& names);

/// A text of several lines as a terminal may show it: as shown(), except that line ends and tabs
/// stay, and that a backslash is a backslash.
std::string shownText(const std::string& text);

/// Each byte as \xHH.
std::string inHex(const std::string& bytes);

}  // namespace tools

#endif
