#ifndef TOOLS_QBLMSGC_OPTIONS_HPP
#define TOOLS_QBLMSGC_OPTIONS_HPP

#include <string>
#include <vector>

namespace msgc {

/// What the command line asks for.
struct Options {
    enum class Command { kCompile, kDump, kShow, kWhere, kHelp, kVersion };

    Command command = Command::kCompile;
    bool checkOnly = false;
    bool quiet = false;
    bool xml = false;
    bool strict = false;  // warnings count as errors
    std::vector<std::string> references;
    std::string header;
    std::string output;
    std::vector<std::string> operands;
};

/// Reads the command line.
/// @param problem  receives what is wrong with it, in the user's language; empty where the usage
///     says it all
/// @return false if it is none of the four usages
bool parseOptions(int argc, char** argv, Options& options, std::string& problem);

}  // namespace msgc

#endif
