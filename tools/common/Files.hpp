#ifndef TOOLS_COMMON_FILES_HPP
#define TOOLS_COMMON_FILES_HPP

#include <string>

namespace tools {

/// Returns true if two paths lead to the same file, also through links. If neither file exists,
/// compares the directories and the names.
bool isSameFile(const std::string& a, const std::string& b);

/// Returns true if nothing exists at the path. Returns false if something exists, or if the check
/// failed. If the check failed, errno has the reason.
bool isAbsent(const std::string& path);

}  // namespace tools

#endif
