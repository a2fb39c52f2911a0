#include <set>

#include "tests/tools/RunTool.hpp"
#include "tools/qblconv/Options.hpp"
#include "tools/qblmsgc/Options.hpp"

namespace {

struct Tool {
    const char *name, *program;
    std::vector<tools::Option> options;
};

/// Returns the options that are not aliases. The manuals describe the aliases elsewhere.
std::vector<tools::Option> described(const std::vector<tools::Option>& options) {
    std::vector<tools::Option> rest;
    for (const tools::Option& option : options)
        if (option.text != tools::Option::kAlias) rest.push_back(option);
    return rest;
}

const std::vector<Tool>& allTools() {
    static const std::vector<Tool> kAll = {{"qblconv", QBL_CONV, described(conv::knownOptions())},
                                           {"qblmsgc", QBL_MSGC, described(msgc::knownOptions())}};
    return kAll;
}

std::set<std::string> inManual(const std::string& tool) {
    std::ifstream manual(QBL_MAN_DIR "/" + tool + ".1");
    std::set<std::string> options;
    for (std::string line; std::getline(manual, line);) {
        std::istringstream words(line);
        std::string macro, flag, first, comma, second;
        words >> macro >> flag >> first >> comma >> second;
        if (macro != ".It" || flag != "Fl") continue;
        std::string option = "-";
        option += first;
        if (comma == ",") option.append(" -").append(second);
        options.insert(option);
    }
    return options;
}

}  // namespace

TEST(OptionTablesTest, ManualsDescribeTheSameOptions) {
    for (const Tool& tool : allTools()) {
        std::set<std::string> known;
        for (const tools::Option& option : tool.options)
            known.insert((option.letter < 256
                              ? std::string("-") + static_cast<char>(option.letter) + " "
                              : std::string()) +
                         "--" + option.name);
        EXPECT_EQ(known, inManual(tool.name));
    }
}

TEST(OptionTablesTest, HelpFitsIntoATerminalInEachLanguage) {
    TempTree tree;
    for (const Tool& tool : allTools())
        for (const char* locale : {"C", "de_DE.UTF-8", "fr_FR.UTF-8", "ja_JP.UTF-8"}) {
            const Outcome help = runTool(tree, "'" + std::string(tool.program) + "' --help",
                                         "LC_ALL=" + std::string(locale));
            EXPECT_EQ(0, help.status);
            std::istringstream lines(help.output);
            for (std::string line; std::getline(lines, line);) {
                // In these texts, characters of three bytes take two columns.
                int columns = 0;
                for (const char c : line) {
                    const auto byte = static_cast<unsigned char>(c);
                    columns += byte >= 0xE0 ? 2 : (byte & 0xC0) != 0x80 ? 1 : 0;
                }
                EXPECT_LE(columns, 79) << locale << ": " << line;
            }
            for (const tools::Option& option : tool.options)
                EXPECT_NE(std::string::npos, help.output.find(std::string("--") + option.name));
        }
}

TEST(OptionTablesTest, BashCompletesOptionsAndTheirArguments) {
    TempTree tree;
    tree.file("file.msg", "");
    const struct {
        const char *tool, *words, *completed;
    } table[] = {
        {QBL_CONV, "qblconv --keep", "--keep-valid"},
        {QBL_CONV, "qblconv --bom = k", "keep"},
        {QBL_CONV, "qblconv -p s", "stop substitute skip"},
        {QBL_CONV, "qblconv -f Shift_J", "Shift_JIS"},
        {QBL_MSGC, "qblmsgc -r fi", "file.msg"},
        {QBL_MSGC, "qblmsgc -c fil", "file.msg"},
    };
    const char bash[] =
        "PATH=${T%/*}:$PATH; $T --completions=bash >c; bash -c 'compopt() { :; }; . ./c; "
        "COMP_WORDS=($W); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _${W%% *}; "
        "echo \"${COMPREPLY[*]}\"'";
    const auto with = [](const std::string& tool, const std::string& words) {
        return "LC_ALL=C T='" + tool + "' W='" + words + "'";
    };
    for (const auto& row : table)
        EXPECT_EQ(std::string(row.completed) + "\n",
                  runTool(tree, bash, with(row.tool, row.words)).output);
    for (const Tool& tool : allTools())
        for (const char* shell : {"zsh", "fish"}) {
            const Outcome script = runTool(tree, "$T --completions=$W", with(tool.program, shell));
            for (const tools::Option& option : tool.options)
                EXPECT_NE(std::string::npos, script.output.find(option.name)) << script.output;
            tree.file("c", script.output);
            const char run[] = "command -v $W >/dev/null || exit 0; $W -n c";
            EXPECT_EQ(0, runTool(tree, run, with(tool.program, shell)).status) << shell;
        }
}
