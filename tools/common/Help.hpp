#ifndef TOOLS_COMMON_HELP_HPP
#define TOOLS_COMMON_HELP_HPP

#include <string>
#include <vector>

#include "tools/common/CommandLine.hpp"
#include "tools/common/MessageText.hpp"

namespace tools {

/// The part of a help text that describes the options, one after the other, in lines of at most 79
/// columns. Lines are broken as the language of the text breaks them (UAX #14); wide East Asian
/// characters take two columns (UAX #11).
std::string describeOptions(const std::vector<Option>& options, MessageText& texts);

/// A script that completes the tool's command lines.
/// @param shell  "bash", "zsh" or "fish"
/// @param texts  describe the options in zsh and fish
/// @return empty for another shell
std::string completionScript(const std::string& tool, const std::string& shell,
                             const std::vector<Option>& options, MessageText& texts);

}  // namespace tools

#endif
