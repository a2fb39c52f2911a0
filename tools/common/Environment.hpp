#ifndef TOOLS_COMMON_ENVIRONMENT_HPP
#define TOOLS_COMMON_ENVIRONMENT_HPP

#include <string>

#include "tools/common/MessageText.hpp"

namespace tools {

/// The user's language: the first of LC_ALL, LC_MESSAGES and LANG that is set. Returns "en" if none
/// is set or if the locale is C or POSIX.
std::string environmentLocale();

/// Finds a tool's catalogue: next to the program in a build tree, else where the library looks for
/// installed catalogues.
/// @param locales  the locales that the tool will request
Catalogue findCatalogue(const QBLTypedCatalogue& catalogue, const std::string& locales);

}  // namespace tools

#endif
