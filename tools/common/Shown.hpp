#ifndef TOOLS_COMMON_SHOWN_HPP
#define TOOLS_COMMON_SHOWN_HPP

#include <string>

#include "QBLCore/Messages/QBLTypedMessage.hpp"

namespace tools {

/// Makes a name or text safe to show in a message: it stays on one line, and cannot control a
/// terminal or change the reading order. Writes \xHH for each byte of: malformed UTF-8, control and
/// format characters (except U+200C and U+200D, which words need), line and paragraph separators,
/// noncharacters, and a backslash before an x.
std::string shown(const std::string& name);
/// Makes a message from texts that are not shown() yet. A message cannot store bytes that are not
/// UTF-8, so this must happen before.
/// @param make  a function of a catalogue
template <class Make, class... Texts>
QBLTypedMessage withShown(Make make, const Texts&... texts) {
    return make(shown(texts)...);
}

/// Makes a text of several lines safe for a terminal. Like shown(), but keeps line ends, tabs and
/// backslashes.
std::string shownText(const std::string& text);

/// Writes each byte as \xHH.
std::string inHex(const std::string& bytes);

}  // namespace tools

#endif
