#ifndef TOOLS_COMMON_HELP_HPP
#define TOOLS_COMMON_HELP_HPP

#include <string>
#include <vector>

#include "tools/common/CommandLine.hpp"
#include "tools/common/MessageText.hpp"

namespace tools {

/// Returns the part of a help text that describes the options, in lines of at most 79 columns.
/// Lines break by the Unicode rules (UAX #14); wide East Asian characters take two columns (UAX
/// #11).
std::string describeOptions(const std::vector<Option>& options, MessageText& texts);

/// Returns a script that completes the tool's command lines.
/// @param shell  "bash", "zsh" or "fish"
/// @param texts  descriptions of the options for zsh and fish
/// @return an empty string for any other shell
std::string completionScript(const std::string& tool, const std::string& shell,
                             const std::vector<Option>& options, MessageText& texts);

}  // namespace tools

#endif
