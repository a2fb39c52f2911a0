#ifndef TOOLS_COMMON_ENVIRONMENT_HPP
#define TOOLS_COMMON_ENVIRONMENT_HPP

#include <string>

namespace tools {

/// The user's language, as LC_ALL, LC_MESSAGES and LANG have it; "en" without one.
std::string environmentLocale();

/// Where a tool's catalogue is: beside the program in a build tree, or as installed.
/// @param name  its base name
/// @param locales  those that it will be asked for
/// @return a base name with or without a directory
std::string findCatalogue(const char* name, const std::string& locales);

}  // namespace tools

#endif
