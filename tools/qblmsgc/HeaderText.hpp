#ifndef TOOLS_QBLMSGC_HEADERTEXT_HPP
#define TOOLS_QBLMSGC_HEADERTEXT_HPP

#include <string>

#include "tools/qblmsgc/Catalogue.hpp"
#include "tools/qblmsgc/TypedHeader.hpp"

namespace msgc {

/// Returns a header for C and C++ with an enum of the named identifiers, in their order. The names
/// of the include guard and the enum come from the file name.
/// @param fileName  the header's file name
/// @param sourceName  the source's file name
/// @param typed  if its shape is not 0, the header also has the typed functions. It is then for
///     C++ only, and the enum's name ends in _ids, because the namespace has the name itself.
/// @return an empty string if no message has a name
std::string headerText(Entries entries, const std::string& fileName, const std::string& sourceName,
                       const TypedCatalogue& typed);

/// Writes the lines of a message's comment as comments of the header.
std::string commentLines(const std::string& comment, const std::string& indent);

}  // namespace msgc

#endif
