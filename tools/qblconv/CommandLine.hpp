#ifndef TOOLS_QBLCONV_COMMANDLINE_HPP
#define TOOLS_QBLCONV_COMMANDLINE_HPP

#include <functional>
#include <string>
#include <vector>

#include "tools/qblconv/Problem.hpp"

namespace conv {

/// An option that there is.
struct Known {
    enum class Argument { kNone, kNeeded, kAttached };

    int letter;  // above 255 for one without a letter
    const char* name;
    Argument argument;
};

/// An option as it stands on the command line.
struct Given {
    const Known& option;
    std::string shown;  // with its dashes
    const char* argument;
};

/// Takes a command line apart. An argument that may only be attached follows an equals sign.
/// @param take  is called with each option in turn; false ends it all, as does a problem
/// @return false, with a problem, if a word is no option or lacks its argument, or take said so
bool readCommandLine(int argc, char** argv, const std::vector<Known>& known,
                     const std::function<bool(const Given&)>& take,
                     std::vector<std::string>& operands, Problem& problem);

}  // namespace conv

#endif
