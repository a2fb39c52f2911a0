#include "tools/qblconv/CommandLine.hpp"

#include <algorithm>
#include <cstring>

#include "QBLCore/Utility/QBLUtGetOpt.hpp"
#include "tools/qblconv/Suggest.hpp"

namespace conv {

namespace {

using Argument = Known::Argument;

class Reader {
public:
    Reader(int argc, char** argv, const std::vector<Known>& known,
           const std::function<bool(const Given&)>& take, Problem& problem)
        : m_argc(argc), m_argv(argv), m_known(known), m_take(take), m_problem(problem) {
        for (const Known& option : known) {
            if (option.letter > 255) continue;
            m_letters += static_cast<char>(option.letter);
            if (option.argument == Argument::kNeeded) m_letters += ':';
        }
        // An attached argument looks like an option of its own.
        m_letters += "=:";
    }

    bool read(std::vector<std::string>& operands) {
        while (m_at < m_argc) {
            bool isEnd = false, isOperand = true;
            if (!readOptions(isEnd, isOperand)) return false;
            if (isEnd) break;
            if (isOperand && m_at < m_argc) operands.emplace_back(m_argv[m_at++]);
        }
        operands.insert(operands.end(), m_argv + m_at, m_argv + m_argc);
        return true;
    }

private:
    bool fail(qblconvmsgs id, Details details) {
        m_problem = {id, std::move(details)};
        return false;
    }

    /// Reads up to the next operand, or to where it has to begin anew.
    /// @param isEnd  receives whether all that follows are operands
    /// @param isOperand  receives whether the next word is one
    bool readOptions(bool& isEnd, bool& isOperand) {
        QBLUtGetOpt words;
        words.setPrintErrors(0);
        char** const first = m_argv + m_at - 1;
        const int count = m_argc - m_at + 1;
        int before = words.getOptInd();
        const char* name = nullptr;
        bool isMoved = false;
        for (int letter; (letter = words.getOpt(count, first, m_letters.c_str(), &name)) != -1 ||
                         name != nullptr;) {
            before = words.getOptInd();
            const char* const next = before < count ? first[before] : nullptr;
            if (name != nullptr ? !takeLong(name, next, isMoved)
                                : !takeLetter(letter, words, first + before - 1))
                return false;
            if (isMoved) break;  // behind a word that only we know to be an argument
        }
        isOperand = !isMoved;
        isEnd = !isMoved && words.getOptInd() != before;
        m_at += words.getOptInd() - 1 + (isMoved ? 1 : 0);
        return true;
    }

    /// @param word  the one that the letter stands in, or its argument behind that
    bool takeLetter(int letter, const QBLUtGetOpt& words, char** word) {
        if (letter == 0) return failLetter(words, *word);
        const std::string shown = {'-', static_cast<char>(letter)};
        const char* argument = words.getOptArg();
        if (letter == '=') {
            const bool isNext = argument == *word;
            if (m_pLast == nullptr || m_pLast->argument != Argument::kAttached)
                return fail(CONV_NO_OPTION, {shown});
            if (isNext && std::strlen(word[-1]) > 2) return failEmpty();
            if (isNext || argument - *word <= 2) return fail(CONV_NO_OPTION, {shown});
            return m_take({*m_pLast, lastShown(), argument});
        }
        m_pLast = &*std::find_if(m_known.begin(), m_known.end(),
                                 [&](const Known& each) { return each.letter == letter; });
        return m_take(
            {*m_pLast, shown, m_pLast->argument == Argument::kNeeded ? argument : nullptr});
    }

    /// Says what is wrong with a letter that is none, or lacks its argument.
    bool failLetter(const QBLUtGetOpt& words, const char* word) {
        // The message has the letter, unless that lacks its argument and ends the word.
        const char* const quote = std::strchr(words.getErrorMsg(), '\'');
        const std::string wrong(1, quote != nullptr ? quote[1] : '?');
        const bool hasAttached = m_pLast != nullptr && m_pLast->argument == Argument::kAttached;
        if (m_letters.find(wrong) != std::string::npos) {
            const char last = *(std::strchr(word, '\0') - 1);
            if (last == '=' && hasAttached && std::strlen(word) > 2) return failEmpty();
            return fail(CONV_OPTION_ALONE, {"-" + std::string(1, last)});
        }
        // As other programs have it: the argument right behind the letter.
        const std::string whole(word);
        const std::size_t at = hasAttached ? whole.find(lastShown()[1] + wrong) : std::string::npos;
        if (at == std::string::npos) return fail(CONV_NO_OPTION, {"-" + wrong});
        return fail(CONV_NO_OPTION_BUT,
                    {whole, whole.substr(0, at + 1) + "=" + whole.substr(at + 1)});
    }

    bool failEmpty() { return fail(CONV_BAD_ARGUMENT, {lastShown(), "\"\""}); }
    std::string lastShown() const { return {'-', static_cast<char>(m_pLast->letter)}; }

    bool takeLong(const char* word, const char* next, bool& isMoved) {
        const char* const equals = std::strchr(word, '=');
        const std::string name = equals != nullptr ? std::string(word, equals) : std::string(word);
        const auto found = std::find_if(m_known.begin(), m_known.end(),
                                        [&](const Known& each) { return name == each.name; });
        if (found == m_known.end()) {
            Closest closest(name);
            for (const Known& each : m_known) closest.offer(each.name);
            if (closest.found().empty()) return fail(CONV_NO_OPTION, {"--" + name});
            return fail(CONV_NO_OPTION_BUT, {"--" + name, "--" + closest.found()});
        }
        m_pLast = nullptr;
        const char* argument = equals != nullptr ? equals + 1 : nullptr;
        if (argument != nullptr && found->argument == Argument::kNone)
            return fail(CONV_NO_ARGUMENT, {"--" + name});
        if (argument == nullptr && found->argument == Argument::kNeeded) {
            if (next == nullptr) return fail(CONV_OPTION_ALONE, {"--" + name});
            argument = next;
            isMoved = true;
        }
        return m_take({*found, "--" + name, argument});
    }

    const int m_argc;
    char** const m_argv;
    const std::vector<Known>& m_known;
    const std::function<bool(const Given&)>& m_take;
    Problem& m_problem;
    std::string m_letters;
    const Known* m_pLast = nullptr;  // the letter in front, in the same word or another
    int m_at = 1;
};

}  // namespace

bool readCommandLine(int argc, char** argv, const std::vector<Known>& known,
                     const std::function<bool(const Given&)>& take,
                     std::vector<std::string>& operands, Problem& problem) {
    return Reader(argc, argv, known, take, problem).read(operands);
}

}  // namespace conv
