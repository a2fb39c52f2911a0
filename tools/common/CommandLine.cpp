#include "tools/common/CommandLine.hpp"

#include <algorithm>
#include <cstring>

#include "QBLCore/Utility/QBLUtGetOpt.hpp"
#include "tools/common/Suggest.hpp"

namespace tools {

namespace {

using Argument = Option::Argument;

class Reader {
public:
    Reader(int argc, char** argv, const std::vector<Option>& options,
           const std::function<bool(const Given&)>& take, Mistake& mistake)
        : m_iWordCount(argc), m_pWords(argv), m_options(options), m_take(take), m_mistake(mistake) {
        for (const Option& option : options) {
            if (option.letter > 255) continue;
            const char letter = static_cast<char>(option.letter);
            if (m_letters.find(letter) != std::string::npos) continue;  // an alias
            m_letters += letter;
            if (option.argument == Argument::kNeeded) m_letters += ':';
        }
        // The library's parser reads "-i=.orig" as the letter i and then the letter = with an
        // argument.
        m_letters += "=:";
    }

    bool read(std::vector<std::string>& operands) {
        while (m_iAt < m_iWordCount) {
            bool isEnd = false, isOperand = true;
            if (!readOptions(isEnd, isOperand)) return false;
            if (isEnd) break;
            if (isOperand && m_iAt < m_iWordCount) operands.emplace_back(m_pWords[m_iAt++]);
        }
        operands.insert(operands.end(), m_pWords + m_iAt, m_pWords + m_iWordCount);
        return true;
    }

private:
    bool rememberMistake(Mistake::Kind kind, const std::string& option,
                         const std::string& suggestion = {}) {
        m_mistake = {kind, option, kind == Mistake::kBadArgument ? "\"\"" : "", suggestion};
        return false;
    }

    /// Reads options up to the next operand, or up to the argument of a long option. The library's
    /// parser does not know which long options have arguments.
    /// @param isEnd  receives true if all words that follow are operands
    /// @param isOperand  receives true if the next word is an operand
    bool readOptions(bool& isEnd, bool& isOperand) {
        QBLUtGetOpt parser;
        parser.setPrintErrors(0);
        char** const first = m_pWords + m_iAt - 1;
        const int count = m_iWordCount - m_iAt + 1;
        int before = parser.getOptInd();
        const char* name = nullptr;
        bool isNextTaken = false;
        for (int letter; (letter = parser.getOpt(count, first, m_letters.c_str(), &name)) != -1 ||
                         name != nullptr;) {
            before = parser.getOptInd();
            const char* const next = before < count ? first[before] : nullptr;
            if (name != nullptr ? !takeLong(name, next, isNextTaken)
                                : !takeLetter(letter, parser, first + before - 1))
                return false;
            if (isNextTaken) break;
        }
        isOperand = !isNextTaken;
        isEnd = !isNextTaken && parser.getOptInd() != before;
        m_iAt += parser.getOptInd() - 1 + (isNextTaken ? 1 : 0);
        return true;
    }

    /// @param word  the last word read: the word with the letter, or the next word if that is the
    ///     letter's argument
    bool takeLetter(int letter, const QBLUtGetOpt& parser, char** word) {
        if (letter == 0) return rememberBadLetter(parser, *word);
        const std::string shown = {'-', static_cast<char>(letter)};
        const char* const argument = parser.getOptArg();
        if (letter == '=') {
            const bool isLast = argument == *word;  // the previous word ended with =
            const bool isFirst = isLast ? std::strlen(word[-1]) == 2 : argument == *word + 2;
            if (isFirst || !hasAttached()) return rememberMistake(Mistake::kNoOption, shown);
            if (isLast) return rememberMistake(Mistake::kBadArgument, lastShown());
            return m_take({*m_pLast, lastShown(), argument});
        }
        const auto found = std::find_if(m_options.begin(), m_options.end(),
                                        [&](const Option& each) { return each.letter == letter; });
        // The parser also accepts a colon as a letter, because its list of letters has colons.
        if (found == m_options.end()) return rememberMistake(Mistake::kNoOption, shown);
        m_pLast = &*found;
        return m_take(
            {*m_pLast, shown, m_pLast->argument == Argument::kNeeded ? argument : nullptr});
    }

    bool rememberBadLetter(const QBLUtGetOpt& parser, const char* word) {
        const char letter = parser.getErrorLetter();
        const std::string shown = {'-', letter};
        const bool isAttached = letter == '=' && hasAttached() && std::strlen(word) > 2;
        if (isAttached) return rememberMistake(Mistake::kBadArgument, lastShown());
        if (letter == '=') return rememberMistake(Mistake::kNoOption, shown);
        if (parser.isArgumentMissing()) return rememberMistake(Mistake::kArgumentMissing, shown);
        // Other programs accept "-i.orig". Suggests the form with an equals sign.
        const std::string whole(word);
        const std::size_t at =
            hasAttached() ? whole.find(lastShown()[1] + std::string(1, letter)) : std::string::npos;
        if (at == std::string::npos) return rememberMistake(Mistake::kNoOption, shown);
        return rememberMistake(Mistake::kNoOption, whole,
                               whole.substr(0, at + 1) + "=" + whole.substr(at + 1));
    }

    /// Returns true if the previous letter can have an attached argument.
    bool hasAttached() const {
        return m_pLast != nullptr && m_pLast->argument == Argument::kAttached;
    }
    std::string lastShown() const { return {'-', static_cast<char>(m_pLast->letter)}; }

    bool takeLong(const char* word, const char* next, bool& isNextTaken) {
        const char* const equals = std::strchr(word, '=');
        const std::string name = equals != nullptr ? std::string(word, equals) : std::string(word);
        const auto found = std::find_if(m_options.begin(), m_options.end(),
                                        [&](const Option& each) { return name == each.name; });
        if (found == m_options.end()) {
            Closest closest(name);
            for (const Option& each : m_options) closest.offer(each.name);
            const std::string& suggestion = closest.found();
            return rememberMistake(Mistake::kNoOption, "--" + name,
                                   suggestion.empty() ? suggestion : "--" + suggestion);
        }
        m_pLast = nullptr;
        const char* argument = equals != nullptr ? equals + 1 : nullptr;
        if (argument != nullptr && found->argument == Argument::kNone)
            return rememberMistake(Mistake::kNoArgument, "--" + name);
        if (argument == nullptr && found->argument == Argument::kNeeded) {
            if (next == nullptr) return rememberMistake(Mistake::kArgumentMissing, "--" + name);
            argument = next;
            isNextTaken = true;
        }
        return m_take({*found, "--" + name, argument});
    }

    const int m_iWordCount;
    char** const m_pWords;
    const std::vector<Option>& m_options;
    const std::function<bool(const Given&)>& m_take;
    Mistake& m_mistake;
    std::string m_letters;
    const Option* m_pLast = nullptr;  // the last option if given by letter, else null
    int m_iAt = 1;
};

}  // namespace

bool readCommandLine(int argc, char** argv, const std::vector<Option>& options,
                     const std::function<bool(const Given&)>& take,
                     std::vector<std::string>& operands, Mistake& mistake) {
    return Reader(argc, argv, options, take, mistake).read(operands);
}

}  // namespace tools
