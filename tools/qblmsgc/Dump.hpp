#ifndef TOOLS_QBLMSGC_DUMP_HPP
#define TOOLS_QBLMSGC_DUMP_HPP

#include <string>

#include "tools/qblmsgc/Catalogue.hpp"

namespace msgc {

/// The messages as a source, a line for each line of their texts. Compiled, it has the same
/// identifiers and texts; characters that cannot be seen are written as escapes. Requires: the
/// texts are well-formed UTF-8.
std::string dumpSource(const Entries& entries);

}  // namespace msgc

#endif
