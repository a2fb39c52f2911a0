#ifndef TOOLS_COMMON_COMMANDLINE_HPP
#define TOOLS_COMMON_COMMANDLINE_HPP

#include <functional>
#include <string>
#include <vector>

namespace tools {

/// An option of a tool. One table of these is behind the command line, the help text and the
/// completions of shells.
struct Option {
    /// Whether it has an argument; an attached one is optional, and follows an equals sign.
    enum class Argument { kNone, kNeeded, kAttached };
    /// Instead of a text: another name for an option, which is not described.
    static constexpr unsigned kAlias = 0;

    int letter;  // above 255 for an option without a letter
    const char* name;
    Argument argument;
    const char* value;  // what the help text calls the argument
    /// What the argument can be: words between spaces, or "FILE", "DIR" or "ENCODING" for names of
    /// these kinds, the latter also after words; empty for any text.
    const char* choices;
    unsigned text;  // the message that describes the option; or kAlias
};

/// An option as it stands on the command line.
struct Given {
    const Option& option;
    std::string shown;  // with its dashes
    const char* argument;
};

/// What is wrong with a command line.
struct Mistake {
    enum Kind {
        kNoOption,         // there is no such option
        kArgumentMissing,  // the option requires an argument
        kNoArgument,       // the option takes no argument
        kBadArgument       // the argument is empty or otherwise not valid
    };

    Kind kind;
    std::string option;      // with its dashes
    std::string argument;    // in quotes, for kBadArgument
    std::string suggestion;  // what the user may have meant; empty if nothing is similar
};

/// Takes a command line apart. Options and operands come in any order, up to "--".
/// @param take  is called with each option in turn; false ends the reading, with what take has put
///     into mistake or elsewhere
/// @return false if a word is no option, if an argument is missing or not wanted, or if take
///     returned false
bool readCommandLine(int argc, char** argv, const std::vector<Option>& options,
                     const std::function<bool(const Given&)>& take,
                     std::vector<std::string>& operands, Mistake& mistake);

}  // namespace tools

#endif
