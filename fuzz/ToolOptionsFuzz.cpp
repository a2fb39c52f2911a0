// Parses the command lines of both tools. The input has their words, each followed by a null byte.
// A valid command line is rewritten in a standard form: long options with arguments after an equals
// sign, "--", and the operands. The rewritten line must parse to the same options and operands.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "tools/common/CommandLine.hpp"
#include "tools/qblconv/Options.hpp"
#include "tools/qblmsgc/Options.hpp"

namespace {

using Words = std::vector<std::string>;

void require(bool holds) {
    if (!holds) std::abort();
}

/// Returns the words as the argv of a program.
std::vector<char*> argumentsOf(Words& words) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    return arguments;
}

/// A command line in the standard form.
struct Line {
    bool isRight = false;
    Words words = {"tool"};
};

Line read(Words words, const std::vector<tools::Option>& options) {
    using Argument = tools::Option::Argument;
    Line line;
    Words operands;
    tools::Mistake mistake = {};
    std::vector<char*> arguments = argumentsOf(words);
    const Words before = words;
    const auto take = [&](const tools::Given& given) {
        const std::string name = std::string("--") + given.option.name;
        const bool hasArgument = given.argument != nullptr;
        require(hasArgument || given.option.argument != Argument::kNeeded);
        require(!hasArgument || given.option.argument != Argument::kNone);
        require(given.shown == name ||
                given.shown == std::string{'-', static_cast<char>(given.option.letter)});
        line.words.push_back(hasArgument ? name + "=" + given.argument : name);
        return true;
    };
    line.isRight = tools::readCommandLine(static_cast<int>(words.size()), arguments.data(), options,
                                          take, operands, mistake);
    require(words == before && line.isRight == mistake.option.empty());
    line.words.emplace_back("--");
    line.words.insert(line.words.end(), operands.begin(), operands.end());
    return line;
}

void checkReader(const Words& words, const std::vector<tools::Option>& options) {
    const Line line = read(words, options);
    if (!line.isRight) return;
    const Line again = read(line.words, options);
    require(again.isRight && again.words == line.words);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Words words = {"tool", ""};
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == 0) words.emplace_back();
        if (data[i] != 0) words.back() += static_cast<char>(data[i]);
    }
    words.pop_back();  // the bytes after the last null byte
    checkReader(words, conv::knownOptions());
    checkReader(words, msgc::knownOptions());
    std::vector<char*> arguments = argumentsOf(words);
    conv::Options conversion;
    conv::Problem wrong = {};
    const bool isRead =
        conv::parseOptions(static_cast<int>(words.size()), arguments.data(), conversion, wrong);
    require(isRead == !wrong.has_value());
    require(conversion.jobs <= 256 || !isRead);
    msgc::Options compilation;
    msgc::Problem problem = {};
    require(msgc::parseOptions(static_cast<int>(words.size()), arguments.data(), compilation,
                               problem) == !problem.has_value());
    return 0;
}
