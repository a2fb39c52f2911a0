#ifndef TOOLS_COMMON_FILES_HPP
#define TOOLS_COMMON_FILES_HPP

#include <string>

namespace tools {

/// Whether two paths lead to one file, whatever their spelling: also by links, and for a file that
/// is not there yet, by its directory and name.
bool isSameFile(const std::string& a, const std::string& b);

/// Whether nothing is there, as opposed to something that cannot be looked at. errno tells which.
bool isAbsent(const std::string& path);

}  // namespace tools

#endif
