#include "tools/qblconv/Options.hpp"

#include <charconv>
#include <cstring>
#include <map>

#include "i18n/cpp/i18n_converter.hpp"
#include "tools/common/Environment.hpp"
#include "tools/common/Suggest.hpp"

namespace conv {

namespace {

using tools::Given;
using Mode = Options::Mode;
using Argument = tools::Option::Argument;

enum { kBom = 256, kLock, kCompletions };

const char kPolicyNames[] = "stop escape substitute lookup skip fit";

constexpr unsigned kMostJobs = 256;

/// A word that an argument can be, and what it stands for.
struct Word {
    const char* name;
    int value;
};

const std::vector<Word> kPolicies = {{"stop", I18N_STOP},
                                     {"escape", I18N_ESCAPE},
                                     {"substitute", I18N_SUBSTITUTE},
                                     {"lookup", I18N_LOOKUP},
                                     {"skip", I18N_USER_DEFINED}};
// Of the output: similar characters; what has none stops.
const char kFit[] = "fit";
const std::vector<Word> kMarks = {{"strip", static_cast<int>(Options::Mark::kStrip)},
                                  {"keep", static_cast<int>(Options::Mark::kKeep)},
                                  {"add", static_cast<int>(Options::Mark::kAdd)}};
const std::vector<Word> kLocks = {{"try", static_cast<int>(Options::Lock::kTry)},
                                  {"wait", static_cast<int>(Options::Lock::kWait)},
                                  {"none", static_cast<int>(Options::Lock::kNone)}};

/// What a mistake is called in the tool's catalogue.
Problem problemOf(const tools::Mistake& mistake) {
    const bool isLike = !mistake.suggestion.empty();
    switch (mistake.kind) {
        case tools::Mistake::kNoOption:
            if (isLike) return {CONV_NO_OPTION_BUT, {mistake.option, mistake.suggestion}};
            return {CONV_NO_OPTION, {mistake.option}};
        case tools::Mistake::kArgumentMissing:
            return {CONV_OPTION_ALONE, {mistake.option}};
        case tools::Mistake::kNoArgument:
            return {CONV_NO_ARGUMENT, {mistake.option}};
        default:
            return {CONV_BAD_ARGUMENT, {mistake.option, mistake.argument}};
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
        // Nothing behind a mistake is read but in which form to say it.
        for (int i = 1; i < argc && std::strcmp(argv[i], "--") != 0; ++i)
            if (std::strcmp(argv[i], "-X") == 0 || std::strcmp(argv[i], "--xml") == 0)
                m_options.xml = true;
        return false;
    }

private:
    bool fail(qblconvmsgs id, Details details) {
        m_problem = {id, std::move(details)};
        return false;
    }

    bool take(const Given& given) {
        const std::string argument = given.argument != nullptr ? given.argument : "";
        m_shown[given.option.letter] = given.shown;
        switch (given.option.letter) {
            case 'f':
                m_options.from = argument;
                return m_options.isFromGiven = true;
            case 't':
                m_options.to = argument;
                return m_options.isToGiven = true;
            case 'p':
                return takePolicies(given, argument);
            case 'c':
                m_options.inputPolicy = m_options.outputPolicy = I18N_USER_DEFINED;
                m_options.usesBestFits = false;
                return true;
            case 'o':
                m_options.output = argument;
                return !argument.empty() || fail(CONV_BAD_ARGUMENT, {given.shown, "\"\""});
            case 'd':
                m_options.directory = argument;
                return takeMode(given, Mode::kDirectory) &&
                       (!argument.empty() || fail(CONV_BAD_ARGUMENT, {given.shown, "\"\""}));
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
            case 'q':
                return m_options.quiet = true;
            case 'v':
                return m_options.verbose = true;
            case 'n':
                return takeMode(given, Mode::kCheck);
            case 'l':
                return takeMode(given, Mode::kList);
            case 'h':
                return takeMode(given, Mode::kHelp);
            default:
                return takeMode(given, Mode::kVersion);
        }
    }

    bool takeMode(const Given& given, Mode mode) {
        if (m_options.mode != Mode::kJoin && m_options.mode != mode)
            return fail(CONV_NOT_TOGETHER, {m_mode, given.shown});
        m_options.mode = mode;
        m_mode = given.shown;
        return true;
    }

    bool takeShell(const Given& given, const std::string& argument) {
        for (const char* const known : {"bash", "zsh", "fish"})
            if (argument == known) return true;
        return fail(CONV_BAD_ARGUMENT, {given.shown, "\"" + argument + "\""});
    }

    /// The suffix comes behind the option itself.
    bool takeSuffix(const Given& given) {
        if (given.argument == nullptr) return takeMode(given, Mode::kInPlace);
        m_options.suffix = given.argument;
        const bool isName =
            !m_options.suffix.empty() && std::strchr(given.argument, '/') == nullptr;
        return takeMode(given, Mode::kInPlace) &&
               (isName || fail(CONV_BAD_ARGUMENT, {given.shown, "\"" + m_options.suffix + "\""}));
    }

    bool takeJobs(const Given& given, const std::string& argument) {
        const char* const end = argument.data() + argument.size();
        const auto [behind, problem] = std::from_chars(argument.data(), end, m_options.jobs);
        const bool isNumber = problem == std::errc() && behind == end && m_options.jobs > 0 &&
                              m_options.jobs <= kMostJobs;
        return isNumber || fail(CONV_BAD_ARGUMENT, {given.shown, "\"" + argument + "\""});
    }

    bool takePolicies(const Given& given, const std::string& argument) {
        const std::size_t comma = argument.find(',');
        const bool isOne = comma == std::string::npos;
        const std::string output = isOne ? argument : argument.substr(comma + 1);
        m_options.usesBestFits = output == kFit;
        m_options.inputPolicy = m_options.outputPolicy = I18N_STOP;
        if (m_options.usesBestFits && isOne) return true;
        if (!takePolicy(given, argument.substr(0, comma), nullptr, m_options.inputPolicy))
            return false;
        return m_options.usesBestFits || takePolicy(given, output, kFit, m_options.outputPolicy);
    }

    /// @param other  what is accepted elsewhere, for the suggestion; may be null
    bool takePolicy(const Given& given, const std::string& argument, const char* other,
                    int& policy) {
        std::vector<Word> words = kPolicies;
        if (other != nullptr) words.push_back({other, I18N_STOP});
        return takeWord(given, argument, words, policy);
    }

    template <class Value>
    bool takeWord(const Given& given, const std::string& argument, const std::vector<Word>& words,
                  Value& value) {
        tools::Closest closest(argument);
        for (const Word& word : words) {
            closest.offer(word.name);
            if (argument != word.name) continue;
            value = static_cast<Value>(word.value);
            return true;
        }
        if (closest.found().empty())
            return fail(CONV_BAD_ARGUMENT, {given.shown, "\"" + argument + "\""});
        return fail(CONV_BAD_ARGUMENT_BUT, {given.shown, "\"" + argument + "\"", closest.found()});
    }

    /// What goes together: a letter that is none of those allowed in a mode is refused.
    bool check() {
        const char* allowed = "";
        switch (m_options.mode) {
            case Mode::kJoin:
                allowed = "ftpcojLXqv";
                break;
            case Mode::kDirectory:
                allowed = "ftpcdjrkmLXqv";
                break;
            case Mode::kInPlace:
                allowed = "ftpcijrkmLXqv";
                break;
            case Mode::kCheck:
                allowed = "ftnjrmLXqv";
                break;
            case Mode::kList:
                allowed = "lL";
                break;
            default:
                allowed = "hVL";
        }
        const bool converts = m_options.mode <= Mode::kInPlace;
        for (const auto& [letter, shown] : m_shown) {
            const bool fits = letter == kBom           ? converts
                              : letter == kLock        ? m_options.mode <= Mode::kCheck
                              : letter == kCompletions ? m_options.mode == Mode::kCompletions
                                                       : std::strchr(allowed, letter) != nullptr;
            if (fits) continue;
            if (!m_mode.empty()) return fail(CONV_NOT_TOGETHER, {shown, m_mode});
            return fail(CONV_NEEDS_MODE, {shown});
        }
        // Names that leave the order of the bytes open are for texts that say it.
        const bool isOpenOrder = I18NConverter::isUTF16(m_options.to.c_str()) ||
                                 I18NConverter::isUTF32(m_options.to.c_str());
        if (converts && isOpenOrder && m_shown.count(kBom) == 0)
            m_options.mark = Options::Mark::kAdd;
        if (m_options.mode == Mode::kInPlace && m_shown.count(kLock) == 0)
            m_options.lock = Options::Lock::kTry;
        if (m_options.quiet) m_options.verbose = false;
        const bool needsOperands = m_options.mode == Mode::kDirectory ||
                                   m_options.mode == Mode::kInPlace ||
                                   m_options.mode == Mode::kCheck;
        if (m_options.mode == Mode::kList && m_options.operands.size() > 1)
            return fail(CONV_BAD_ARGUMENT, {m_mode, "\"" + m_options.operands[1] + "\""});
        if (needsOperands && m_options.operands.empty()) return fail(CONV_NO_OPERANDS, {m_mode});
        return true;
    }

    Options& m_options;
    Problem& m_problem;
    std::map<int, std::string> m_shown;  // the options given, by letter
    std::string m_mode;                  // the option that chose it
};

}  // namespace

const std::vector<tools::Option>& knownOptions() {
    const auto kNone = Argument::kNone, kNeeded = Argument::kNeeded;
    static const std::vector<tools::Option> options = {
        {'f', "from", kNeeded, "ENC", "ENCODING", CONV_OPT_FROM},
        {'t', "to", kNeeded, "ENC", "ENCODING", CONV_OPT_TO},
        {'p', "policy", kNeeded, "P[,Q]", kPolicyNames, CONV_OPT_POLICY},
        {'c', "skip", kNone, "", "", CONV_OPT_SKIP},
        {'o', "output", kNeeded, "FILE", "FILE", CONV_OPT_OUTPUT},
        {'d', "directory", kNeeded, "DIR", "DIR", CONV_OPT_DIRECTORY},
        {'i', "in-place", Argument::kAttached, "SUFFIX", "", CONV_OPT_IN_PLACE},
        {'n', "check", kNone, "", "", CONV_OPT_CHECK},
        {'k', "keep-valid", kNone, "", "", CONV_OPT_KEEP_VALID},
        {'r', "recurse", kNone, "", "", CONV_OPT_RECURSE},
        {'m', "match", kNeeded, "GLOB", "", CONV_OPT_MATCH},
        {'j', "jobs", kNeeded, "N", "", CONV_OPT_JOBS},
        {kBom, "bom", kNeeded, "HOW", "strip keep add", CONV_OPT_BOM},
        {kLock, "lock", kNeeded, "HOW", "try wait none", CONV_OPT_LOCK},
        {'L', "lang", kNeeded, "LOCALES", "", CONV_OPT_LANG},
        {'X', "xml", kNone, "", "", CONV_OPT_XML},
        {'q', "quiet", kNone, "", "", CONV_OPT_QUIET},
        {'v', "verbose", kNone, "", "", CONV_OPT_VERBOSE},
        {'l', "list", kNone, "", "", CONV_OPT_LIST},
        {'h', "help", kNone, "", "", CONV_OPT_HELP},
        {'V', "version", kNone, "", "", CONV_OPT_VERSION},
        {kCompletions, "completions", kNeeded, "SHELL", "bash zsh fish", CONV_OPT_COMPLETIONS},
    };
    return options;
}

bool parseOptions(int argc, char** argv, Options& options, Problem& problem) {
    return Parser(options, problem).parse(argc, argv);
}

}  // namespace conv
