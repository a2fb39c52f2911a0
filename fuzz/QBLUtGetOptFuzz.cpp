// The input has the option letters and then the words of a command line, each followed by a NUL
// byte. Compares the results of QBLUtGetOpt with the results of a second parser, which processes
// all words in advance.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "QBLCore/Utility/QBLUtGetOpt.hpp"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

struct Step {
    int result;
    std::string longOption;
    std::string argument;  // the last argument
    std::string error;     // the last error
    int index;             // index of the next word
    bool isLong = false;
};

std::string message(const std::string& program, char letter, const char* what) {
    return "\n" + program + " : '" + letter + "' " + what + "\n";
}

/// Returns the expected results of getOpt(), up to the first call that consumes no word.
std::vector<Step> expected(const std::vector<std::string>& words, const std::string& letters) {
    std::vector<Step> steps;
    Step step{0, "", "", "", 1};
    const auto give = [&](int result) {
        step.result = result;
        steps.push_back(step);
        step.isLong = false;
    };
    for (std::size_t i = 1; i < words.size() && words[i].size() > 1 && words[i][0] == '-';) {
        const std::string& word = words[i++];
        step.index = static_cast<int>(i);
        if (word[1] == '-') {
            step.isLong = word.size() > 2;
            if (step.isLong) step.longOption = word.substr(2);
            give(-1);
            continue;
        }
        for (std::size_t at = 1; at < word.size(); ++at) {
            const std::size_t found = letters.find(word[at]);
            if (found == std::string::npos) {
                step.error = message(words[0], word[at], "not a valid option");
                give(0);
            } else if (letters.compare(found + 1, 1, ":") != 0) {
                give(static_cast<unsigned char>(word[at]));
            } else if (at + 1 == word.size() && i == words.size()) {
                step.error = message(words[0], letters[0], "option requires an argument");
                give(0);
            } else {
                step.argument = at + 1 < word.size() ? word.substr(at + 1) : words[i++];
                step.index = static_cast<int>(i);
                give(static_cast<unsigned char>(word[at]));
                break;
            }
        }
    }
    give(-1);
    return steps;
}

/// Parses the words by getOpt() and compares each result with the expected one.
void check(const std::vector<std::string>& words, std::string letters, std::vector<char*>& argv) {
    QBLUtGetOpt options;
    options.setPrintErrors(0);
    for (const Step& step : expected(words, letters)) {
        const char* longOption = "not reset";
        const int result =
            options.getOpt(static_cast<int>(argv.size()), argv.data(), &letters[0], &longOption);
        require(result == step.result && options.getOptInd() == step.index);
        require((longOption != nullptr) == step.isLong);
        if (longOption != nullptr) require(longOption == step.longOption);
        require(options.getLongOpt() == step.longOption && options.getErrorMsg() == step.error);
        const char* argument = options.getOptArg();
        require(step.argument == (argument != nullptr ? argument : ""));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> words(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == 0) words.emplace_back();
        if (data[i] != 0) words.back() += static_cast<char>(data[i]);
    }
    std::string letters = words.front();
    words.erase(words.begin());
    if (words.empty()) words.emplace_back("prog");
    std::vector<char*> argv(words.size());
    for (std::size_t i = 0; i < words.size(); ++i) argv[i] = &words[i][0];
    check(words, letters, argv);
    argv.push_back(nullptr);  // a null pointer ends the words too
    check(words, letters, argv);
    return 0;
}
