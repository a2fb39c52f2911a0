#ifndef TOOLS_QBLMSGC_PATHS_HPP
#define TOOLS_QBLMSGC_PATHS_HPP

#include <string>

namespace msgc {

/// The last part of a path.
std::string fileOf(const std::string& path);

/// The name of a source with the extension of what it is compiled to.
std::string compiledName(const std::string& source);

/// Whether a path ends as those of message files do.
bool isMessageFileName(const std::string& path);

/// The locale that a message file's name ends with, like "de_AT"; empty if it has none.
std::string localeOf(const std::string& path);

}  // namespace msgc

#endif
