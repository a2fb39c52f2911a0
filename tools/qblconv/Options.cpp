#include "tools/qblconv/Options.hpp"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <map>

#include "i18n/cpp/i18n_converter.hpp"
#include "tools/common/Environment.hpp"
#include "tools/common/LocaleText.hpp"
#include "tools/common/Suggest.hpp"
#include "tools/qblconv/Detect.hpp"

namespace conv {

namespace {

using tools::Given;
using Mode = Options::Mode;
using Argument = tools::Option::Argument;

enum { kBom = 256, kLock, kCompletions, kLineEnd, kVerify, kJson, kClean };

const char kSuffixes[] = "//TRANSLIT //IGNORE";
const char kPolicyNames[] = "stop escape substitute lookup skip fit translit";

constexpr unsigned kMostJobs = 256;

/// A possible argument and its value.
struct Word {
    const char* name;
    int value;
};

const std::vector<Word> kPolicies = {{"stop", I18N_STOP},
                                     {"escape", I18N_ESCAPE},
                                     {"substitute", I18N_SUBSTITUTE},
                                     {"lookup", I18N_LOOKUP},
                                     {"skip", I18N_USER_DEFINED}};
// These policies are only for characters that the output's encoding lacks. If there is no similar
// character, the conversion stops.
const std::vector<Word> kSimilar = {
    {"fit", static_cast<int>(Options::Similar::kFit)},
    {"translit", static_cast<int>(Options::Similar::kTransliteration)}};
const std::vector<Word> kMarks = {{"strip", static_cast<int>(Options::Mark::kStrip)},
                                  {"keep", static_cast<int>(Options::Mark::kKeep)},
                                  {"add", static_cast<int>(Options::Mark::kAdd)}};
const std::vector<Word> kLocks = {{"try", static_cast<int>(Options::Lock::kTry)},
                                  {"wait", static_cast<int>(Options::Lock::kWait)},
                                  {"none", static_cast<int>(Options::Lock::kNone)}};

const std::vector<Word> kLineEnds = {{"keep", static_cast<int>(Options::LineEnd::kKeep)},
                                     {"lf", static_cast<int>(Options::LineEnd::kLf)},
                                     {"crlf", static_cast<int>(Options::LineEnd::kCrLf)}};

const Word* find(const std::vector<Word>& words, const std::string& name) {
    const auto found = std::find_if(words.begin(), words.end(),
                                    [&](const Word& word) { return name == word.name; });
    return found != words.end() ? &*found : nullptr;
}

const char* nameOf(const std::vector<Word>& words, int value) {
    return std::find_if(words.begin(), words.end(),
                        [value](const Word& word) { return word.value == value; })
        ->name;
}

std::string inQuotes(const std::string& text) { return "\"" + text + "\""; }

/// The catalogue's message for a mistake.
Problem problemOf(const tools::Mistake& mistake) {
    const bool isLike = !mistake.suggestion.empty();
    switch (mistake.kind) {
        case tools::Mistake::kNoOption:
            if (isLike)
                return tools::withShown(qblconvmsgs::convNoOptionBut, mistake.option,
                                        mistake.suggestion);
            return tools::withShown(qblconvmsgs::convNoOption, mistake.option);
        case tools::Mistake::kArgumentMissing:
            return tools::withShown(qblconvmsgs::convOptionAlone, mistake.option);
        case tools::Mistake::kNoArgument:
            return tools::withShown(qblconvmsgs::convNoArgument, mistake.option);
        default:
            return tools::withShown(qblconvmsgs::convBadArgument, mistake.option, mistake.argument);
    }
}

class Parser {
public:
    Parser(Options& options, Problem& problem) : m_options(options), m_problem(problem) {}

    bool parse(int argc, char** argv) {
        m_options.locales = tools::environmentLocale();
        tools::Mistake mistake = {};
        const bool isRead = tools::readCommandLine(
            argc, argv, knownOptions(), [this](const Given& given) { return take(given); },
            m_options.operands, mistake);
        if (isRead) return check();
        if (!mistake.option.empty()) m_problem = problemOf(mistake);
        // After a mistake, reads only the options for the form of messages.
        for (int i = 1; i < argc && std::strcmp(argv[i], "--") != 0; ++i)
            if (std::strcmp(argv[i], "-X") == 0 || std::strcmp(argv[i], "--xml") == 0)
                m_options.xml = true;
            else if (std::strcmp(argv[i], "--json") == 0)
                m_options.json = true;
        return false;
    }

private:
    template <class Make, class... Texts>
    bool rememberProblem(Make make, const Texts&... texts) {
        m_problem = tools::withShown(make, texts...);
        return false;
    }

    /// @param choices  the valid words, separated by spaces
    bool rememberBadWord(const Given& given, const std::string& argument,
                         const std::string& choices) {
        return rememberProblem(qblconvmsgs::convBadWord, given.shown, inQuotes(argument), choices);
    }

    bool take(const Given& given) {
        const std::string argument = given.argument != nullptr ? given.argument : "";
        m_shown[given.option.letter] = given.shown;
        switch (given.option.letter) {
            case 'f':
                return m_options.isFromGiven = takeEncoding(given, argument, m_options.from);
            case 't':
                return m_options.isToGiven = takeEncoding(given, argument, m_options.to);
            case 'p':
                return takePolicies(given, argument);
            case 'c':
                m_options.inputPolicy = m_options.outputPolicy = I18N_USER_DEFINED;
                m_options.similar = Options::Similar::kNone;
                return true;
            case 'o':
                m_options.output = argument;
                return !argument.empty() ||
                       rememberProblem(qblconvmsgs::convBadArgument, given.shown, "\"\"");
            case 'd':
                m_options.directory = argument;
                return takeMode(given, Mode::kDirectory) &&
                       (!argument.empty() ||
                        rememberProblem(qblconvmsgs::convBadArgument, given.shown, "\"\""));
            case 'i':
                return takeSuffix(given);
            case 'j':
                return takeJobs(given, argument);
            case 'm':
                m_options.match = argument;
                return true;
            case 'L':
                m_options.locales = argument;
                return true;
            case kBom:
                return takeWord(given, argument, kMarks, m_options.mark);
            case kCompletions:
                m_options.shell = argument;
                return takeMode(given, Mode::kCompletions) && takeShell(given, argument);
            case kLock:
                return takeWord(given, argument, kLocks, m_options.lock);
            case kLineEnd:
                return takeWord(given, argument, kLineEnds, m_options.lineEnd);
            default:
                return takeFlag(given);
        }
    }

    bool takeFlag(const Given& given) {
        switch (given.option.letter) {
            case 'k':
                return m_options.keepValid = true;
            case 'r':
                return m_options.recurse = true;
            case 'X':
                return m_options.xml = true;
            case kJson:
                return m_options.json = true;
            case kVerify:
                return m_options.verifies = true;
            case 'q':
            case 's':
                return m_options.quiet = true;
            case 'v':
                return m_options.verbose = true;
            case 'n':
                return takeMode(given, Mode::kCheck);
            case 'g':
                return takeMode(given, Mode::kGuess);
            case 'l':
                return takeMode(given, Mode::kList);
            case kClean:
                return takeMode(given, Mode::kClean);
            case 'h':
                return takeMode(given, Mode::kHelp);
            default:
                return takeMode(given, Mode::kVersion);
        }
    }

    bool takeMode(const Given& given, Mode mode) {
        if (m_options.mode != Mode::kJoin && m_options.mode != mode)
            return rememberProblem(qblconvmsgs::convNotTogether, m_mode, given.shown);
        m_options.mode = mode;
        m_mode = given.shown;
        return true;
    }

    bool takeShell(const Given& given, const std::string& argument) {
        for (const char* const known : {"bash", "zsh", "fish"})
            if (argument == known) return true;
        return rememberBadWord(given, argument, given.option.choices);
    }

    /// Takes the in-place mode and, if it is attached to the option, the suffix for originals.
    bool takeSuffix(const Given& given) {
        if (given.argument == nullptr) return takeMode(given, Mode::kInPlace);
        m_options.suffix = given.argument;
        const bool isName =
            !m_options.suffix.empty() && std::strchr(given.argument, '/') == nullptr;
        return takeMode(given, Mode::kInPlace) &&
               (isName || rememberProblem(qblconvmsgs::convBadArgument, given.shown,
                                          inQuotes(m_options.suffix)));
    }

    bool takeJobs(const Given& given, const std::string& argument) {
        const char* const end = argument.data() + argument.size();
        const auto [rest, problem] = std::from_chars(argument.data(), end, m_options.jobs);
        const bool isNumber = problem == std::errc() && rest == end && m_options.jobs > 0 &&
                              m_options.jobs <= kMostJobs;
        return isNumber || rememberBadWord(given, argument, "1-" + std::to_string(kMostJobs));
    }

    /// Takes a name with iconv's suffixes after two slashes. Ignores the suffixes of an input's
    /// name, like iconv.
    bool takeEncoding(const Given& given, const std::string& argument, std::string& name) {
        if (given.option.letter == 'f' && isAuto(argument)) {
            name = argument;
            return true;
        }
        const std::size_t slashes = argument.find("//");
        name = argument.substr(0, slashes);
        if (name.empty() || name == "char") name = tools::localeEncodingName();
        const bool isOutput = given.option.letter == 't';
        if (isOutput) m_suffix.clear();
        for (std::size_t at = slashes; at != std::string::npos;) {
            at = argument.find_first_not_of("/,", at);
            if (at == std::string::npos) break;
            const std::size_t end = argument.find_first_of("/,", at);
            std::string word = argument.substr(at, end - at);
            std::transform(word.begin(), word.end(), word.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c; });
            if (word != "TRANSLIT" && word != "IGNORE")
                return rememberProblem(qblconvmsgs::convBadWord, given.shown, inQuotes(argument),
                                       kSuffixes);
            if (isOutput) m_suffix += word;
            at = end;
        }
        return true;
    }

    /// Applies the suffixes of the output's encoding. The option -c acts like the suffix //IGNORE.
    bool applySuffix() {
        const bool translit = m_suffix.find("TRANSLIT") != std::string::npos;
        const bool skips = m_suffix.find("IGNORE") != std::string::npos || m_shown.count('c') != 0;
        if (m_suffix.empty()) return true;
        if (m_shown.count('p') != 0)
            return rememberProblem(qblconvmsgs::convNotTogether,
                                   translit ? "//TRANSLIT" : "//IGNORE", m_shown.find('p')->second);
        if (translit) m_options.similar = Options::Similar::kTransliteration;
        if (skips)
            m_options.inputPolicy = m_options.outputPolicy = I18N_USER_DEFINED;
        else
            m_options.marksLacking = true;
        return true;
    }

    bool takePolicies(const Given& given, const std::string& argument) {
        const std::size_t comma = argument.find(',');
        const bool isOne = comma == std::string::npos;
        const std::string output = isOne ? argument : argument.substr(comma + 1);
        const Word* const similar = find(kSimilar, output);
        m_options.similar = similar != nullptr ? static_cast<Options::Similar>(similar->value)
                                               : Options::Similar::kNone;
        m_options.inputPolicy = m_options.outputPolicy = I18N_STOP;
        if (similar != nullptr && isOne) return true;
        if (!takePolicy(given, argument.substr(0, comma), isOne, m_options.inputPolicy))
            return false;
        return similar != nullptr || takePolicy(given, output, true, m_options.outputPolicy);
    }

    bool takePolicy(const Given& given, const std::string& argument, bool mayBeSimilar,
                    int& policy) {
        std::vector<Word> words = kPolicies;
        if (mayBeSimilar) words.insert(words.end(), kSimilar.begin(), kSimilar.end());
        return takeWord(given, argument, words, policy);
    }

    template <class Value>
    bool takeWord(const Given& given, const std::string& argument, const std::vector<Word>& words,
                  Value& value) {
        if (const Word* const word = find(words, argument)) {
            value = static_cast<Value>(word->value);
            return true;
        }
        tools::Closest closest(argument);
        std::string choices;
        for (const Word& word : words) {
            closest.offer(word.name);
            choices.append(choices.empty() ? "" : " ").append(word.name);
        }
        if (closest.found().empty()) return rememberBadWord(given, argument, choices);
        return rememberProblem(qblconvmsgs::convBadArgumentBut, given.shown, inQuotes(argument),
                               closest.found());
    }

    /// Returns true if an option is allowed in a mode.
    static bool fits(int option, Mode mode) {
        const bool converts = mode <= Mode::kInPlace;
        const char* letters = "hVL";
        switch (option) {
            case kBom:
            case kLineEnd:
            case kVerify:
                return converts;
            case kLock:
            case kJson:
                return mode <= Mode::kGuess;
            case kCompletions:
                return mode == Mode::kCompletions;
            case kClean:
                return mode == Mode::kClean;
            default:
                break;
        }
        switch (mode) {
            case Mode::kJoin:
                letters = "ftpcoLXqsv";
                break;
            case Mode::kDirectory:
                letters = "ftpcdjrkmLXqsv";
                break;
            case Mode::kInPlace:
                letters = "ftpcijrkmLXqsv";
                break;
            case Mode::kCheck:
                letters = "ftnjrmLXqsv";
                break;
            case Mode::kClean:
                letters = "rLXqsv";
                break;
            case Mode::kGuess:
                letters = "fgjrmLXqsv";
                break;
            case Mode::kList:
                letters = "lL";
                break;
            default:
                break;
        }
        return std::strchr(letters, option) != nullptr;
    }

    /// Checks the combination of options.
    bool check() {
        for (const auto& [option, shown] : m_shown) {
            if (fits(option, m_options.mode)) continue;
            if (!m_mode.empty())
                return rememberProblem(qblconvmsgs::convNotTogether, shown, m_mode);
            const bool isForChecks = fits(option, Mode::kCheck);
            return rememberProblem(
                isForChecks ? qblconvmsgs::convNeedsMode : qblconvmsgs::convNeedsOutputs, shown);
        }
        // Changed line ends do not convert back, and kept files keep their line ends.
        const int apart[][2] = {{'X', kJson}, {kLineEnd, kVerify}, {kLineEnd, 'k'}};
        for (const auto& [one, other] : apart)
            if (m_shown.count(one) != 0 && m_shown.count(other) != 0)
                return rememberProblem(qblconvmsgs::convNotTogether, m_shown[one], m_shown[other]);
        if (!applySuffix()) return false;
        const bool converts = m_options.mode <= Mode::kInPlace;
        // An encoding name without a byte order requires a mark that tells the order.
        const bool isOpenOrder = I18NConverter::isUTF16(m_options.to.c_str()) ||
                                 I18NConverter::isUTF32(m_options.to.c_str());
        if (converts && isOpenOrder && m_shown.count(kBom) == 0)
            m_options.mark = Options::Mark::kAdd;
        if (m_options.mode == Mode::kInPlace && m_shown.count(kLock) == 0)
            m_options.lock = Options::Lock::kTry;
        if (m_options.quiet) m_options.verbose = false;
        const bool onlyReads = m_options.mode == Mode::kCheck || m_options.mode == Mode::kGuess;
        if (onlyReads && m_options.operands.empty()) m_options.operands.emplace_back("-");
        const bool needsOperands =
            m_options.mode == Mode::kDirectory || m_options.mode == Mode::kInPlace;
        if (m_options.mode == Mode::kList && m_options.operands.size() > 1)
            return rememberProblem(qblconvmsgs::convOnePattern, m_options.operands[1], m_mode);
        if (m_options.mode == Mode::kClean && m_options.operands.empty())
            return rememberProblem(qblconvmsgs::convNoDirectory, m_mode);
        const bool isNamed = m_options.isFromGiven && !isAuto(m_options.from);
        if (m_options.mode == Mode::kGuess && isNamed)
            return rememberProblem(qblconvmsgs::convBadWord, m_shown['f'], inQuotes(m_options.from),
                                   kAutoChoices);
        if (needsOperands && m_options.operands.empty())
            return rememberProblem(qblconvmsgs::convNoOperands, m_mode);
        return true;
    }

    Options& m_options;
    Problem& m_problem;
    std::map<int, std::string> m_shown;  // the options given, by letter
    std::string m_mode;                  // the option that selected the mode
    std::string m_suffix;                // of the output's encoding, in upper case
};

}  // namespace

const char* inputPolicyName(const Options& options) {
    return nameOf(kPolicies, options.inputPolicy);
}

const char* outputPolicyName(const Options& options) {
    if (options.similar == Options::Similar::kNone) return nameOf(kPolicies, options.outputPolicy);
    return nameOf(kSimilar, static_cast<int>(options.similar));
}

const std::vector<tools::Option>& knownOptions() {
    const auto kNone = Argument::kNone, kNeeded = Argument::kNeeded;
    static const std::vector<tools::Option> kOptions = {
        {'f', "from", kNeeded, "ENC", "auto ENCODING", CONV_OPT_FROM},
        {'t', "to", kNeeded, "ENC", "ENCODING", CONV_OPT_TO},
        // iconv's names for these options.
        {'f', "from-code", kNeeded, "", "ENCODING", tools::Option::kAlias},
        {'t', "to-code", kNeeded, "", "ENCODING", tools::Option::kAlias},
        {'s', "silent", kNone, "", "", tools::Option::kAlias},
        {'p', "policy", kNeeded, "P[,Q]", kPolicyNames, CONV_OPT_POLICY},
        {'c', "skip", kNone, "", "", CONV_OPT_SKIP},
        {kLineEnd, "eol", kNeeded, "END", "keep lf crlf", CONV_OPT_EOL},
        {kVerify, "verify", kNone, "", "", CONV_OPT_VERIFY},
        {'o', "output", kNeeded, "FILE", "FILE", CONV_OPT_OUTPUT},
        {'d', "directory", kNeeded, "DIR", "DIR", CONV_OPT_DIRECTORY},
        {'i', "in-place", Argument::kAttached, "SUFFIX", "", CONV_OPT_IN_PLACE},
        {'n', "check", kNone, "", "", CONV_OPT_CHECK},
        {'g', "guess", kNone, "", "", CONV_OPT_GUESS},
        {'k', "keep-valid", kNone, "", "", CONV_OPT_KEEP_VALID},
        {'r', "recurse", kNone, "", "", CONV_OPT_RECURSE},
        {'m', "match", kNeeded, "GLOB", "", CONV_OPT_MATCH},
        {'j', "jobs", kNeeded, "N", "", CONV_OPT_JOBS},
        {kBom, "bom", kNeeded, "HOW", "strip keep add", CONV_OPT_BOM},
        {kLock, "lock", kNeeded, "HOW", "try wait none", CONV_OPT_LOCK},
        {'L', "lang", kNeeded, "LOCALES", "", CONV_OPT_LANG},
        {'X', "xml", kNone, "", "", CONV_OPT_XML},
        {kJson, "json", kNone, "", "", CONV_OPT_JSON},
        {'q', "quiet", kNone, "", "", CONV_OPT_QUIET},
        {'v', "verbose", kNone, "", "", CONV_OPT_VERBOSE},
        {kClean, "clean", kNone, "", "", CONV_OPT_CLEAN},
        {'l', "list", kNone, "", "", CONV_OPT_LIST},
        {'h', "help", kNone, "", "", CONV_OPT_HELP},
        {'V', "version", kNone, "", "", CONV_OPT_VERSION},
        {kCompletions, "completions", kNeeded, "SHELL", "bash zsh fish", CONV_OPT_COMPLETIONS},
    };
    return kOptions;
}

bool parseOptions(int argc, char** argv, Options& options, Problem& problem) {
    return Parser(options, problem).parse(argc, argv);
}

}  // namespace conv
