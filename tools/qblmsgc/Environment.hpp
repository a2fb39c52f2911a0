#ifndef TOOLS_QBLMSGC_ENVIRONMENT_HPP
#define TOOLS_QBLMSGC_ENVIRONMENT_HPP

#include <string>

namespace msgc {

/// The user's language: the one set, else as LC_ALL, LC_MESSAGES and LANG have it, else "en".
const std::string& userLocale();
/// Requires: nothing has been said yet. An empty text sets nothing.
void setUserLocale(const std::string& locales);

/// The base name of the tool's own catalogue: as installed, or beside the program in a build tree.
const std::string& ownCatalogue();

}  // namespace msgc

#endif
