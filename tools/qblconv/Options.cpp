#include "tools/qblconv/Options.hpp"

#include <charconv>
#include <cstring>
#include <map>

#include "i18n/cpp/i18n_converter.hpp"
#include "tools/common/Environment.hpp"
#include "tools/qblconv/CommandLine.hpp"
#include "tools/qblconv/Suggest.hpp"

namespace conv {

namespace {

using Mode = Options::Mode;
using Argument = Known::Argument;

enum { kBom = 256, kLock };

const std::vector<Known> kKnown = {
    {'f', "from", Argument::kNeeded},       {'t', "to", Argument::kNeeded},
    {'p', "policy", Argument::kNeeded},     {'c', "skip", Argument::kNone},
    {'o', "output", Argument::kNeeded},     {'d', "directory", Argument::kNeeded},
    {'i', "in-place", Argument::kAttached}, {'n', "check", Argument::kNone},
    {'k', "keep-valid", Argument::kNone},   {'r', "recurse", Argument::kNone},
    {'m', "match", Argument::kNeeded},      {'j', "jobs", Argument::kNeeded},
    {kBom, "bom", Argument::kNeeded},       {kLock, "lock", Argument::kNeeded},
    {'L', "lang", Argument::kNeeded},       {'X', "xml", Argument::kNone},
    {'q', "quiet", Argument::kNone},        {'v', "verbose", Argument::kNone},
    {'l', "list", Argument::kNone},         {'h', "help", Argument::kNone},
    {'V', "version", Argument::kNone},
};
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
const std::vector<Word> kMarks = {{"strip", static_cast<int>(Options::Mark::kStrip)},
                                  {"keep", static_cast<int>(Options::Mark::kKeep)},
                                  {"add", static_cast<int>(Options::Mark::kAdd)}};
const std::vector<Word> kLocks = {{"try", static_cast<int>(Options::Lock::kTry)},
                                  {"wait", static_cast<int>(Options::Lock::kWait)},
                                  {"none", static_cast<int>(Options::Lock::kNone)}};

class Parser {
public:
    Parser(Options& options, Problem& problem) : m_options(options), m_problem(problem) {}

    bool parse(int argc, char** argv) {
        m_options.locales = tools::environmentLocale();
        const bool isRead = readCommandLine(
            argc, argv, kKnown, [this](const Given& given) { return take(given); },
            m_options.operands, m_problem);
        if (isRead) return check();
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
        if (!takeWord(given, argument.substr(0, comma), kPolicies, m_options.inputPolicy))
            return false;
        if (comma != std::string::npos)
            return takeWord(given, argument.substr(comma + 1), kPolicies, m_options.outputPolicy);
        m_options.outputPolicy = m_options.inputPolicy;
        return true;
    }

    template <class Value>
    bool takeWord(const Given& given, const std::string& argument, const std::vector<Word>& words,
                  Value& value) {
        Closest closest(argument);
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
            const bool fits = letter == kBom    ? converts
                              : letter == kLock ? m_options.mode <= Mode::kCheck
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

bool parseOptions(int argc, char** argv, Options& options, Problem& problem) {
    return Parser(options, problem).parse(argc, argv);
}

}  // namespace conv
