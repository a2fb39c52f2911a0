#ifndef TOOLS_QBLMSGC_DUMP_HPP
#define TOOLS_QBLMSGC_DUMP_HPP

#include <string>

namespace msgc {

/// Returns a message as source text, with one line for each line of its text. Compiling the result
/// gives the same identifier and text. Invisible characters become escapes.
/// Requires: the text is well-formed UTF-8.
std::string dumpSource(unsigned id, const std::string& text);

}  // namespace msgc

#endif
