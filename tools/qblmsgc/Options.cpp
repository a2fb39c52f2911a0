#include "tools/qblmsgc/Options.hpp"

#include <cstring>

#include "tools/common/Files.hpp"
#include "tools/qblmsgc/Paths.hpp"

namespace msgc {

namespace {

using Command = Options::Command;
using tools::Given;
using tools::Mistake;

enum { kCompletions = 256, kTyped };

Problem problemOf(const Mistake& mistake) {
    switch (mistake.kind) {
        case Mistake::kNoOption:
            if (!mistake.suggestion.empty())
                return tools::withShown(qblmsgcmsgs::msgcNoOptionBut, mistake.option,
                                        mistake.suggestion);
            return tools::withShown(qblmsgcmsgs::msgcNoOption, mistake.option);
        case Mistake::kArgumentMissing:
            return tools::withShown(qblmsgcmsgs::msgcOptionAlone, mistake.option);
        case Mistake::kNoArgument:
            return tools::withShown(qblmsgcmsgs::msgcNoArgument, mistake.option);
        default:
            return tools::withShown(qblmsgcmsgs::msgcBadArgument, mistake.option, mistake.argument);
    }
}

class Parser {
public:
    Parser(Options& options, Problem& problem) : m_options(options), m_problem(problem) {}

    bool parse(int argc, char** argv) {
        Mistake mistake = {};
        if (tools::readCommandLine(
                argc, argv, knownOptions(), [this](const Given& given) { return take(given); },
                m_options.operands, mistake))
            return checkOptions() && checkOperands() && checkOutputs();
        if (!mistake.option.empty()) m_problem = problemOf(mistake);
        return false;
    }

private:
    template <class Make, class... Texts>
    bool rememberProblem(Make make, const Texts&... texts) {
        m_problem = tools::withShown(make, texts...);
        return false;
    }

    bool take(const Given& given) {
        switch (given.option.letter) {
            case 'd':
                return takeCommand(given, Command::kDump);
            case 'g':
                return takeCommand(given, Command::kShow);
            case 'w':
                return takeCommand(given, Command::kWhere);
            case 's':
                return takeCommand(given, Command::kReport);
            case 'h':
                return takeCommand(given, Command::kHelp);
            case 'V':
                return takeCommand(given, Command::kVersion);
            case kCompletions:
                return takeText(given, m_options.shell) &&
                       takeCommand(given, Command::kCompletions) && checkShell(given);
            case 'L':
                return takeText(given, m_options.locales);
            default:
                return takeCompiling(given);
        }
    }

    bool takeCommand(const Given& given, Command command) {
        if (!m_command.empty() && m_options.command != command)
            return rememberProblem(qblmsgcmsgs::msgcNotTogether, m_command, given.shown);
        m_options.command = command;
        m_command = given.shown;
        return true;
    }

    /// Takes an option that is only for compiling.
    bool takeCompiling(const Given& given) {
        m_compiling = given.shown;
        switch (given.option.letter) {
            case 'c':
                return m_options.checkOnly = true;
            case 'q':
                return m_options.quiet = true;
            case 'X':
                return m_options.xml = true;
            case 'W':
                return m_options.strict = true;
            case 'r':
                return takeText(given, m_options.references.emplace_back());
            case kTyped:
                m_options.base = given.argument != nullptr ? given.argument : "";
                return m_options.typed = true;
            case 'H':
                m_writing = given.shown;
                return takeText(given, m_options.header);
            default:
                m_writing = given.shown;
                return takeText(given, m_options.output);
        }
    }

    bool takeText(const Given& given, std::string& text) {
        text = given.argument;
        return !text.empty() || rememberProblem(qblmsgcmsgs::msgcBadArgument, given.shown, "\"\"");
    }

    bool checkShell(const Given& given) {
        for (const char* const known : {"bash", "zsh", "fish"})
            if (m_options.shell == known) return true;
        return rememberProblem(qblmsgcmsgs::msgcBadWord, given.shown, "\"" + m_options.shell + "\"",
                               given.option.choices);
    }

    bool checkOptions() {
        if (!m_command.empty() && !m_compiling.empty())
            return rememberProblem(qblmsgcmsgs::msgcNotTogether, m_command, m_compiling);
        if (m_options.checkOnly && !m_writing.empty())
            return rememberProblem(qblmsgcmsgs::msgcNotTogether, "-c", m_writing);
        return true;
    }

    bool checkOperands() {
        std::size_t least = 1, most = 1;
        switch (m_options.command) {
            case Command::kShow:
                least = 2;
                most = m_options.operands.size();
                break;
            case Command::kWhere:
                most = 2;
                break;
            case Command::kReport:
                least = 0;
                most = 2;
                break;
            case Command::kHelp:
            case Command::kVersion:
            case Command::kCompletions:
                return true;
            default:
                break;
        }
        const std::size_t count = m_options.operands.size();
        if (count < least) return rememberProblem(qblmsgcmsgs::msgcNoOperand);
        return count <= most ||
               rememberProblem(qblmsgcmsgs::msgcNoMoreOperands, m_options.operands[most]);
    }

    /// Checks that no output overwrites an input or another output.
    bool checkOutputs() {
        if (m_options.command != Command::kCompile || m_options.checkOnly) return true;
        const std::string& source = m_options.operands[0];
        if (m_options.base.empty()) m_options.base = baseOf(source);
        if (m_options.output.empty()) m_options.output = compiledName(source);
        std::vector<std::string> taken = m_options.references;
        taken.push_back(source);
        for (const std::string* const output : {&m_options.output, &m_options.header}) {
            if (output->empty()) continue;
            for (const std::string& each : taken)
                if (tools::isSameFile(each, *output))
                    return rememberProblem(qblmsgcmsgs::msgcSameFile, *output, each);
            taken.push_back(*output);
        }
        return true;
    }

    Options& m_options;
    Problem& m_problem;
    // The last option of each kind, as given.
    std::string m_command;
    std::string m_compiling;
    std::string m_writing;
};

}  // namespace

const std::vector<tools::Option>& knownOptions() {
    const auto kNone = tools::Option::Argument::kNone, kNeeded = tools::Option::Argument::kNeeded;
    static const std::vector<tools::Option> kOptions = {
        {'o', "output", kNeeded, "FILE", "FILE", MSGC_OPT_OUTPUT},
        {'H', "header", kNeeded, "FILE", "FILE", MSGC_OPT_HEADER},
        {kTyped, "typed", tools::Option::Argument::kAttached, "BASE", "", MSGC_OPT_TYPED},
        {'r', "reference", kNeeded, "FILE", "FILE", MSGC_OPT_REFERENCE},
        {'c', "check", kNone, "", "", MSGC_OPT_CHECK},
        {'W', "strict", kNone, "", "", MSGC_OPT_STRICT},
        {'q', "quiet", kNone, "", "", MSGC_OPT_QUIET},
        {'X', "xml", kNone, "", "", MSGC_OPT_XML},
        {'d', "dump", kNone, "", "", MSGC_OPT_DUMP},
        {'g', "get", kNone, "", "", MSGC_OPT_GET},
        {'w', "where", kNone, "", "", MSGC_OPT_WHERE},
        {'s', "show-report", kNone, "", "", MSGC_OPT_SHOW_REPORT},
        {'L', "lang", kNeeded, "LOCALES", "", MSGC_OPT_LANG},
        {'h', "help", kNone, "", "", MSGC_OPT_HELP},
        {'V', "version", kNone, "", "", MSGC_OPT_VERSION},
        {kCompletions, "completions", kNeeded, "SHELL", "bash zsh fish", MSGC_OPT_COMPLETIONS},
    };
    return kOptions;
}

bool parseOptions(int argc, char** argv, Options& options, Problem& problem) {
    return Parser(options, problem).parse(argc, argv);
}

}  // namespace msgc
