#ifndef TOOLS_QBLMSGC_ENVIRONMENT_HPP
#define TOOLS_QBLMSGC_ENVIRONMENT_HPP

#include <string>

#include "tools/common/MessageText.hpp"

namespace msgc {

/// The user's language: the language that setUserLocale() has set, else the language of LC_ALL,
/// LC_MESSAGES or LANG, else "en".
const std::string& userLocale();
/// Sets the user's language. An empty text sets nothing.
/// Requires: no message has been formatted yet.
void setUserLocale(const std::string& locales);

/// The tool's own catalogue, as installed or next to the program in a build tree.
const tools::Catalogue& ownCatalogue();

}  // namespace msgc

#endif
