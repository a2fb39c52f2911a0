#include "tools/qblmsgc/FunctionNames.hpp"

#include <algorithm>

#include "tools/qblmsgc/SourceParser.hpp"

namespace msgc {

namespace {

constexpr std::size_t kLongestName = 40;

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isLower(char c) { return c >= 'a' && c <= 'z'; }
char lower(char c) { return isUpper(c) ? static_cast<char>(c | 0x20) : c; }
char upper(char c) { return isLower(c) ? static_cast<char>(c & ~0x20) : c; }

/// Appends a word in camel case.
void appendWord(std::string& name, std::string word) {
    const bool hasLower = std::any_of(word.begin(), word.end(), isLower);
    for (std::size_t i = 0; i < word.size(); ++i) {
        // In a first word such as QBLPlugin, the last capital begins the next word.
        const bool beginsNext = i > 0 && i + 1 < word.size() && isLower(word[i + 1]);
        if (hasLower && (!name.empty() || !isUpper(word[i]) || beginsNext)) break;
        word[i] = lower(word[i]);
    }
    if (!name.empty()) word[0] = upper(word[0]);
    name += word;
}

/// The text after "{n}" in a comment, up to the next separator.
std::string description(const std::string& comment, int number) {
    const std::string mark = "{" + std::to_string(number) + "}";
    const std::size_t begin = comment.find(mark);
    if (begin == std::string::npos) return std::string();
    const std::size_t first = begin + mark.size();
    return comment.substr(first, comment.find_first_of(",;.:({\n", first) - first);
}

/// @return an empty string if the text is not usable as a name
std::string parameterOf(const std::string& text) {
    std::string name;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string word;
        for (; i < text.size() && (isLower(text[i]) || isUpper(text[i]) || isDigit(text[i])); ++i)
            word += text[i];
        if (i < text.size() && (static_cast<unsigned char>(text[i]) & 0x80) != 0) return {};
        // Drops the ending of a genitive.
        if (i + 1 < text.size() && text[i] == '\'' && text[i + 1] == 's') ++i;
        const bool isArticle = word == "the" || word == "a" || word == "an" || word == "is";
        if (word.empty() || (name.empty() && isArticle)) continue;
        const bool isConnection = word == "and" || word == "or" || word == "to";
        if (name.empty() && isConnection) return {};
        appendWord(name, word);
    }
    const bool isUsable = !name.empty() && !isDigit(name[0]) && name.size() <= kLongestName;
    return isUsable && !isReserved(name) ? name : std::string();
}

}  // namespace

std::string functionOf(const std::string& message) {
    std::string name;
    for (std::size_t begin = 0; begin < message.size();) {
        const std::size_t end = std::min(message.find('_', begin), message.size());
        if (end > begin) appendWord(name, message.substr(begin, end - begin));
        begin = end + 1;
    }
    if (name.empty() || isDigit(name[0])) name.insert(0, "_");
    return isReserved(name) || name == "kCatalogue" ? name + "_" : name;
}

std::set<int> describedArguments(const std::string& comment) {
    std::set<int> numbers;
    for (int number = 0; number <= 9; ++number)
        if (comment.find("{" + std::to_string(number) + "}") != std::string::npos)
            numbers.insert(number);
    return numbers;
}

std::vector<std::string> parameterNames(const std::vector<int>& numbers, const std::string& comment,
                                        const std::set<std::string>& taken) {
    std::vector<std::string> names;
    names.reserve(numbers.size());
    for (const int number : numbers) names.push_back(parameterOf(description(comment, number)));
    const std::vector<std::string> described = names;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const bool isUnique = std::count(described.begin(), described.end(), names[i]) == 1;
        const bool isLikeOurs =
            names[i].size() > 3 && names[i].compare(0, 3, "arg") == 0 && isDigit(names[i][3]);
        if (names[i].empty() || !isUnique || isLikeOurs || taken.count(names[i]) != 0)
            names[i] = "arg" + std::to_string(numbers[i]);
    }
    return names;
}

}  // namespace msgc
