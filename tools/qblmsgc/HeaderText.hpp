#ifndef TOOLS_QBLMSGC_HEADERTEXT_HPP
#define TOOLS_QBLMSGC_HEADERTEXT_HPP

#include <string>

#include "tools/qblmsgc/Catalogue.hpp"

namespace msgc {

/// A header for C and C++ with an enum of the named identifiers, in their order. Guard and enum are
/// called after the file.
/// @param fileName  of the header
/// @param sourceName  that it was made from
/// @return empty if no message has a name
std::string headerText(Entries entries, const std::string& fileName, const std::string& sourceName);

}  // namespace msgc

#endif
