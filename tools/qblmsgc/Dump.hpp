#ifndef TOOLS_QBLMSGC_DUMP_HPP
#define TOOLS_QBLMSGC_DUMP_HPP

#include <string>

namespace msgc {

/// A message as a source, a line for each line of its text. Compiled, it has the same identifier
/// and text; characters that cannot be seen are written as escapes. Requires: the text is
/// well-formed UTF-8.
std::string dumpSource(unsigned id, const std::string& text);

}  // namespace msgc

#endif
