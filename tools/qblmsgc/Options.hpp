#ifndef TOOLS_QBLMSGC_OPTIONS_HPP
#define TOOLS_QBLMSGC_OPTIONS_HPP

#include <string>
#include <vector>

#include "tools/common/CommandLine.hpp"
#include "tools/common/MessageText.hpp"
#include "tools/qblmsgc/qblmsgcmsgs.hpp"

namespace msgc {

using tools::Details;

/// What the command line asks for.
struct Options {
    enum class Command { kCompile, kDump, kShow, kWhere, kReport, kHelp, kVersion, kCompletions };

    Command command = Command::kCompile;
    bool checkOnly = false;
    bool quiet = false;
    bool xml = false;
    bool strict = false;  // warnings count as errors
    std::vector<std::string> references;
    std::string header;
    std::string output;
    std::string locales;  // of the tool's messages; empty for those of the environment
    std::string shell;    // to print completions for
    std::vector<std::string> operands;
};

/// What is wrong with the command line, as a message of the tool.
struct Problem {
    qblmsgcmsgs id;
    Details details;
};

/// The options that there are, in the order of the help text.
const std::vector<tools::Option>& knownOptions();

/// Reads the command line; options and operands come in any order, up to "--".
/// @param options  has what stands before a mistake, even after a failure
/// @return false, with a problem, if it is not one of the tool's usages, or if it would overwrite a
///     file that is read
bool parseOptions(int argc, char** argv, Options& options, Problem& problem);

}  // namespace msgc

#endif
