#ifndef TOOLS_QBLMSGC_ENVIRONMENT_HPP
#define TOOLS_QBLMSGC_ENVIRONMENT_HPP

#include <string>

namespace msgc {

/// The user's language, as LC_ALL, LC_MESSAGES and LANG have it; "en" without one.
const std::string& userLocale();

/// The base name of the tool's own catalogue: as installed, or beside the program in a build tree.
const std::string& ownCatalogue();

}  // namespace msgc

#endif
