#include "tools/qblmsgc/Options.hpp"

#include <getopt.h>

#include "tools/qblmsgc/Paths.hpp"
#include "tools/qblmsgc/Report.hpp"

namespace msgc {

namespace {

using Command = Options::Command;

const option kLongNames[] = {
    {"help", no_argument, nullptr, 'h'}, {"version", no_argument, nullptr, 'V'}, {}};

/// The option that getopt_long has refused. A long name is one that is not known, or has an
/// argument that it does not take: optopt is its letter then.
std::string refusedOption(char** argv) {
    if (optopt != 0 && optopt != 'h' && optopt != 'V')
        return std::string("-") + static_cast<char>(optopt);
    const std::string word = argv[optind - 1];
    return word.substr(0, word.find('='));
}

/// What a letter asks for; nothing for one that only goes with compiling.
bool isCommand(int letter, Command& command) {
    switch (letter) {
        case 'd':
            command = Command::kDump;
            return true;
        case 'g':
            command = Command::kShow;
            return true;
        case 'w':
            command = Command::kWhere;
            return true;
        case 'h':
            command = Command::kHelp;
            return true;
        case 'V':
            command = Command::kVersion;
            return true;
        default:
            return false;
    }
}

void setOption(int letter, Options& options) {
    switch (letter) {
        case 'c':
            options.checkOnly = true;
            break;
        case 'q':
            options.quiet = true;
            break;
        case 'X':
            options.xml = true;
            break;
        case 'W':
            options.strict = true;
            break;
        case 'r':
            options.references.emplace_back(optarg);
            break;
        case 'H':
            options.header = optarg;
            break;
        default:
            options.output = optarg;
    }
}

bool hasRightOperands(const Options& options) {
    const std::size_t count = options.operands.size();
    switch (options.command) {
        case Command::kShow:
            return count >= 2;
        case Command::kWhere:
            return count == 1 || count == 2;
        case Command::kHelp:
        case Command::kVersion:
            return true;
        default:
            return count == 1;
    }
}

}  // namespace

bool parseOptions(int argc, char** argv, Options& options, std::string& problem) {
    bool hasCommand = false, hasOther = false;
    opterr = 0;
    const char letters[] = ":cqXWr:H:o:dgwhV";
    for (int letter = 0; (letter = getopt_long(argc, argv, letters, kLongNames, nullptr)) != -1;) {
        if (letter == '?' || letter == ':') {
            problem =
                textOf(letter == ':' ? MSGC_OPTION_ALONE : MSGC_NO_OPTION, {refusedOption(argv)});
            return false;
        }
        if (isCommand(letter, options.command)) {
            if (hasCommand) return false;
            hasCommand = true;
        } else {
            hasOther = true;
            setOption(letter, options);
        }
    }
    options.operands.assign(argv + optind, argv + argc);
    if ((hasCommand && hasOther) || !hasRightOperands(options)) return false;
    if (options.command != Command::kCompile) return true;
    const bool writes = !options.output.empty() || !options.header.empty();
    if (options.checkOnly && writes) return false;
    const std::string& source = options.operands[0];
    if (options.output.empty()) options.output = compiledName(source);
    // Nothing that is read is written over.
    std::vector<std::string> sources = options.references;
    sources.push_back(source);
    for (const std::string& each : sources)
        if (each == options.output || each == options.header) return false;
    if (options.output == options.header) return false;
    return true;
}

}  // namespace msgc
