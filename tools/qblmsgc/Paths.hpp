#ifndef TOOLS_QBLMSGC_PATHS_HPP
#define TOOLS_QBLMSGC_PATHS_HPP

#include <string>

namespace msgc {

/// The last part of a path.
std::string fileOf(const std::string& path);

/// The name of the message file for a source.
std::string compiledName(const std::string& source);

/// The base name of the catalogue that a source belongs to: the file's name without its extension
/// and without a locale at its end.
std::string baseOf(const std::string& source);

/// Returns true if a path has the extension of message files.
bool isMessageFileName(const std::string& path);

/// The locale at the end of a message file's name, like "de_AT"; empty if the name has no locale.
std::string localeOf(const std::string& path);

}  // namespace msgc

#endif
