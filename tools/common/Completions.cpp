// Writes completion scripts for shells from a tool's table of options.
#include <algorithm>
#include <iterator>

#include "tools/common/Help.hpp"

namespace tools {

namespace {

using Argument = Option::Argument;

/// Quotes a text as one shell word, in single quotes.
std::string quoted(const std::string& text) {
    std::string out = "'";
    for (const char c : text) {
        if (c == '\'')
            out += "'\\''";
        else
            out += c;
    }
    return out += "'";
}

std::string lettersAndName(const Option& option, const char* between) {
    std::string out;
    if (option.letter <= 255) out.append({'-', static_cast<char>(option.letter)}).append(between);
    return out.append("--").append(option.name);
}

/// A command that prints the names of encodings, one per line.
std::string encodings(const std::string& tool) {
    return tool + " -l 2>/dev/null | tr ' ' '\\n' | sort -u";
}

const char kEncoding[] = "ENCODING";

/// Returns true if the choices include the names of encodings.
/// @param words  receives the other choices, each followed by a space
bool isEncoding(const std::string& choices, std::string& words) {
    const std::size_t at = choices.find(kEncoding);
    if (at != std::string::npos) words = choices.substr(0, at);
    return at != std::string::npos;
}

/// The arguments for compgen: "-W WORDS", "-f" or "-d"; empty if any text is allowed.
std::string bashChoices(const std::string& tool, const std::string& choices) {
    if (choices == "FILE") return "-f";
    if (choices == "DIR") return "-d";
    std::string words;
    if (isEncoding(choices, words)) return "-W \"" + words + "$(" + encodings(tool) + ")\"";
    return choices.empty() ? choices : "-W " + quoted(choices);
}

std::string bashScript(const std::string& tool, const std::vector<Option>& options) {
    std::string all, cases;
    for (const Option& option : options) {
        all.append(all.empty() ? "" : " ").append(lettersAndName(option, " "));
        if (option.argument != Argument::kNeeded) continue;
        all += "=";
        const std::string choices = bashChoices(tool, option.choices);
        cases.append("        ").append(lettersAndName(option, " | ")).append(") ");
        const bool isPath = choices == "-f" || choices == "-d";
        if (!choices.empty())
            cases.append("mapfile -t COMPREPLY < <(compgen ")
                .append(choices)
                .append(" -- \"$word\"); ");
        cases += isPath ? "compopt -o filenames; return ;;\n" : "return ;;\n";
    }
    const std::string function = "_" + tool;
    return "# Completes command lines of " + tool + " in bash.\n" + function +
           "() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}\n"
           "    # bash makes three words of --name=value.\n"
           "    if [[ $word == = ]]; then\n"
           "        word=\n"
           "    elif [[ $before == = ]]; then\n"
           "        before=${COMP_WORDS[COMP_CWORD - 2]}\n"
           "    fi\n"
           "    case $before in\n" +
           cases +
           "    esac\n"
           "    if [[ $word == -* ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W " +
           quoted(all) +
           " -- \"$word\")\n"
           "        if [[ ${COMPREPLY[0]-} == *= ]]; then compopt -o nospace; fi\n"
           "    else\n"
           "        mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n"
           "        compopt -o filenames\n"
           "    fi\n"
           "}\ncomplete -F " +
           function + " " + tool + "\n";
}

/// Escapes a description for the brackets of zsh's _arguments.
std::string zshText(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') out += '\\';
        out += c;
    }
    return out;
}

std::string zshAction(const std::string& choices) {
    if (choices == "FILE") return "_files";
    if (choices == "DIR") return "_files -/";
    std::string words;
    if (isEncoding(choices, words))
        return words.empty() ? "_encodings" : "{_encodings; compadd " + words + "}";
    return choices.empty() ? " " : "(" + choices + ")";
}

std::string zshScript(const std::string& tool, const std::vector<Option>& options,
                      MessageText& texts) {
    std::string out = "#compdef " + tool + "\n# Completes command lines of " + tool +
                      " in zsh.\n_encodings() {\n    local -a names=(${(f)\"$(" + encodings(tool) +
                      ")\"})\n    compadd -a names\n}\n_arguments -s -S \\\n";
    for (const Option& option : options) {
        const std::string letter(1, static_cast<char>(option.letter));
        const bool hasLetter = option.letter <= 255;
        const char* const suffix[] = {"", "+", "=-"};
        const char* const behindLong[] = {"", "=", "=-"};
        const auto kind = static_cast<std::size_t>(option.argument);
        std::string rest = "[" + zshText(texts.text(option.text)) + "]";
        if (option.argument != Argument::kNone)
            rest.append(option.argument == Argument::kAttached ? "::" : ":")
                .append(option.value)
                .append(":")
                .append(zshAction(option.choices));
        out += "    ";
        // Writes no exclusion lists, because some options may be given several times.
        if (hasLetter) {
            out.append("{-").append(letter).append(suffix[kind]).append(",--");
            out.append(option.name).append(behindLong[kind]).append("}");
        } else {
            out.append("--").append(option.name).append(behindLong[kind]);
        }
        out.append(quoted(rest)).append(" \\\n");
    }
    return out + "    '*:file:_files'\n";
}

std::string fishScript(const std::string& tool, const std::vector<Option>& options,
                       MessageText& texts) {
    std::string out = "# Completes command lines of " + tool + " in fish.\n";
    for (const Option& option : options) {
        out.append("complete -c ").append(tool);
        if (option.letter <= 255) out.append(" -s ").append(1, static_cast<char>(option.letter));
        out.append(" -l ").append(option.name);
        const std::string choices = option.choices;
        std::string words;
        if (option.argument == Argument::kNeeded) {
            if (choices == "FILE")
                out += " -rF";
            else if (choices == "DIR")
                out += " -xa '(__fish_complete_directories)'";
            else if (isEncoding(choices, words))
                out.append(" -xa ").append(quoted(words + "(" + encodings(tool) + ")"));
            else
                out += choices.empty() ? " -x" : " -xa " + quoted(choices);
        }
        out.append(" -d ").append(quoted(texts.text(option.text))).append("\n");
    }
    return out;
}

}  // namespace

std::string completionScript(const std::string& tool, const std::string& shell,
                             const std::vector<Option>& known, MessageText& texts) {
    std::vector<Option> options;
    std::copy_if(known.begin(), known.end(), std::back_inserter(options),
                 [](const Option& option) { return option.text != Option::kAlias; });
    if (shell == "bash") return bashScript(tool, options);
    if (shell == "zsh") return zshScript(tool, options, texts);
    if (shell == "fish") return fishScript(tool, options, texts);
    return std::string();
}

}  // namespace tools
