#ifndef TOOLS_QBLCONV_OPTIONS_HPP
#define TOOLS_QBLCONV_OPTIONS_HPP

#include <string>
#include <vector>

#include "i18n/cpp/i18n_converter_types.h"
#include "tools/common/CommandLine.hpp"
#include "tools/qblconv/Problem.hpp"

namespace conv {

/// What the command line asks for.
struct Options {
    enum class Mode {
        kJoin,
        kDirectory,
        kInPlace,
        kCheck,
        kGuess,
        kClean,
        kList,
        kHelp,
        kVersion,
        kCompletions
    };
    enum class Mark { kStrip, kKeep, kAdd };
    enum class Lock { kTry, kWait, kNone };
    enum class LineEnd { kKeep, kLf, kCrLf };
    /// What may take the place of a character that the output's encoding lacks.
    enum class Similar { kNone, kFit, kTransliteration };

    Mode mode = Mode::kJoin;
    std::string from = "UTF-8";
    std::string to = "UTF-8";
    bool isFromGiven = false;
    bool isToGiven = false;
    /// I18N_USER_DEFINED is to leave out.
    int inputPolicy = I18N_STOP;
    int outputPolicy = I18N_STOP;
    Similar similar = Similar::kNone;  // comes before the output policy
    bool marksLacking = false;         // by question marks, instead of the output policy
    Mark mark = Mark::kStrip;
    Lock lock = Lock::kNone;
    LineEnd lineEnd = LineEnd::kKeep;
    std::string output;     // empty for the standard output
    std::string directory;  // that outputs go into
    std::string suffix;     // that originals keep; empty if they are not kept
    std::string match;      // names in directories; empty for all
    std::string locales;    // of the messages
    std::string shell;      // to print completions for
    unsigned jobs = 0;      // 0 for as many as there are processors
    bool recurse = false;
    bool keepValid = false;
    bool quiet = false;
    bool verbose = false;
    bool xml = false;
    bool json = false;
    bool verifies = false;
    std::vector<std::string> operands;
};

/// The policies as the command line calls them.
const char* inputPolicyName(const Options& options);
const char* outputPolicyName(const Options& options);

/// The options that there are, in the order of the help text.
const std::vector<tools::Option>& knownOptions();

/// Reads the command line; operands and options may come in any order, up to "--".
/// @param options  has the language of the messages also after a failure behind it
/// @return false if something is wrong with it
bool parseOptions(int argc, char** argv, Options& options, Problem& problem);

}  // namespace conv

#endif
