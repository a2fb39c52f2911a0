#ifndef TOOLS_QBLCONV_OPTIONS_HPP
#define TOOLS_QBLCONV_OPTIONS_HPP

#include <string>
#include <vector>

#include "i18n/cpp/i18n_converter_types.h"
#include "tools/common/CommandLine.hpp"
#include "tools/qblconv/Problem.hpp"

namespace conv {

/// The options of a command line.
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
    /// The similar characters that may replace a character that the output's encoding lacks.
    enum class Similar { kNone, kFit, kTransliteration };

    Mode mode = Mode::kJoin;
    std::string from = "UTF-8";
    std::string to = "UTF-8";
    bool isFromGiven = false;
    bool isToGiven = false;
    /// The policies. I18N_USER_DEFINED means the policy "skip".
    int inputPolicy = I18N_STOP;
    int outputPolicy = I18N_STOP;
    Similar similar = Similar::kNone;  // applied before the output policy
    bool marksLacking = false;         // writes question marks instead of outputPolicy
    Mark mark = Mark::kStrip;
    Lock lock = Lock::kNone;
    LineEnd lineEnd = LineEnd::kKeep;
    std::string output;     // empty for the standard output
    std::string directory;  // directory for outputs
    std::string suffix;     // for the names of originals; empty to keep none
    std::string match;      // pattern for names in directories; empty for all
    std::string locales;    // languages of messages
    std::string shell;      // shell for which completions are printed
    unsigned jobs = 0;      // 0 for one per processor
    bool recurse = false;
    bool keepValid = false;
    bool quiet = false;
    bool verbose = false;
    bool xml = false;
    bool json = false;
    bool verifies = false;
    std::vector<std::string> operands;
};

/// The names of the policies on the command line.
const char* inputPolicyName(const Options& options);
const char* outputPolicyName(const Options& options);

/// All options, in the order of the help text.
const std::vector<tools::Option>& knownOptions();

/// Parses the command line. Operands and options may come in any order; "--" ends the options.
/// @param options  after a failure, says at least in which form to print the problem (text, XML or
///     JSON), and in which languages if -L comes before the mistake
/// @return false, with a problem, if the command line is wrong
bool parseOptions(int argc, char** argv, Options& options, Problem& problem);

}  // namespace conv

#endif
