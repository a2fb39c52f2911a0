#ifndef TOOLS_QBLMSGC_OPTIONS_HPP
#define TOOLS_QBLMSGC_OPTIONS_HPP

#include <optional>
#include <string>
#include <vector>

#include "tools/common/CommandLine.hpp"
#include "tools/common/Shown.hpp"
#include "tools/qblmsgc/qblmsgcmsgs.hpp"

namespace msgc {

/// The options of a command line.
struct Options {
    enum class Command { kCompile, kDump, kShow, kWhere, kReport, kHelp, kVersion, kCompletions };

    Command command = Command::kCompile;
    bool checkOnly = false;
    bool quiet = false;
    bool xml = false;
    bool strict = false;  // warnings count as errors
    std::vector<std::string> references;
    std::string header;
    bool typed = false;
    std::string base;  // the catalogue's name in a typed header; not empty if typed
    std::string output;
    std::string locales;  // languages of the tool's messages; if empty, the environment's languages
    std::string shell;    // shell for which completions are printed
    std::vector<std::string> operands;
};

/// A problem of the command line, as a message of the tool. An empty object means no problem.
using Problem = std::optional<QBLTypedMessage>;

/// All options, in the order of the help text.
const std::vector<tools::Option>& knownOptions();

/// Parses the command line. Options and operands may come in any order; "--" ends the options.
/// @param options  after a failure, has the options before the mistake
/// @return false, with a problem, if the command line is wrong, or if an output would overwrite a
///     file that is read
bool parseOptions(int argc, char** argv, Options& options, Problem& problem);

}  // namespace msgc

#endif
