#ifndef TOOLS_COMMON_ENVIRONMENT_HPP
#define TOOLS_COMMON_ENVIRONMENT_HPP

#include <string>

namespace tools {

/// The user's language: the first of LC_ALL, LC_MESSAGES and LANG that is set. Returns "en" if none
/// is set or if the locale is C or POSIX.
std::string environmentLocale();

/// Finds a tool's catalogue: next to the program in a build tree, else where the library looks for
/// installed catalogues.
/// @param name  the catalogue's base name
/// @param locales  the locales that the tool will request
/// @return the base name, with a directory if the catalogue is next to the program
std::string findCatalogue(const char* name, const std::string& locales);

}  // namespace tools

#endif
