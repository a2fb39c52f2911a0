#ifndef TOOLS_QBLMSGC_HEADERTEXT_HPP
#define TOOLS_QBLMSGC_HEADERTEXT_HPP

#include <string>

#include "tools/qblmsgc/Catalogue.hpp"

namespace msgc {

/// Returns a header for C and C++ with an enum of the named identifiers, in their order. The names
/// of the include guard and the enum come from the file name.
/// @param fileName  the header's file name
/// @param sourceName  the source's file name
/// @return an empty string if no message has a name
std::string headerText(Entries entries, const std::string& fileName, const std::string& sourceName);

}  // namespace msgc

#endif
