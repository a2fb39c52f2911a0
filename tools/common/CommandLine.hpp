#ifndef TOOLS_COMMON_COMMANDLINE_HPP
#define TOOLS_COMMON_COMMANDLINE_HPP

#include <functional>
#include <string>
#include <vector>

namespace tools {

/// An option of a tool. The command line, the help text and the completions of shells come from one
/// table of options.
struct Option {
    /// Whether the option has an argument. An attached argument is optional and follows an equals
    /// sign.
    enum class Argument { kNone, kNeeded, kAttached };
    /// In place of a message: marks an alias of another option. The help text does not show
    /// aliases.
    static constexpr unsigned kAlias = 0;

    int letter;  // above 255 if the option has no letter
    const char* name;
    Argument argument;
    const char* value;  // name of the argument in the help text
    /// Possible arguments, for completion: words separated by spaces; "FILE", "DIR" or "ENCODING"
    /// for names of that kind ("ENCODING" may follow words); empty for any text.
    const char* choices;
    unsigned text;  // id of the message that describes the option, or kAlias
};

/// An option as given on the command line.
struct Given {
    const Option& option;
    std::string shown;  // with its dashes
    const char* argument;
};

/// The error in a command line.
struct Mistake {
    enum Kind {
        kNoOption,         // unknown option
        kArgumentMissing,  // the option requires an argument
        kNoArgument,       // the option takes no argument
        kBadArgument       // the argument is empty or invalid
    };

    Kind kind;
    std::string option;      // with its dashes
    std::string argument;    // in quotes, for kBadArgument
    std::string suggestion;  // a similar option; empty if no option is similar
};

/// Parses a command line. Options and operands may come in any order; "--" ends the options.
/// @param take  called with each option in turn; to stop the parser, it stores the reason and
///     returns false
/// @return false if a word with dashes is not an option, if an argument is missing or superfluous,
///     or if take returned false
bool readCommandLine(int argc, char** argv, const std::vector<Option>& options,
                     const std::function<bool(const Given&)>& take,
                     std::vector<std::string>& operands, Mistake& mistake);

}  // namespace tools

#endif
