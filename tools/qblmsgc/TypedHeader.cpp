#include "tools/qblmsgc/TypedHeader.hpp"

#include <cstdio>
#include <set>
#include <vector>

#include "tools/qblmsgc/FunctionNames.hpp"
#include "tools/qblmsgc/HeaderText.hpp"
#include "tools/qblmsgc/PatternCheck.hpp"

namespace msgc {

namespace {

std::string literal(const std::string& text) {
    std::string out = "\"";
    char digits[8];
    for (const char c : text) {
        std::snprintf(digits, sizeof digits, "\\%03o", static_cast<unsigned char>(c));
        const bool isPlain = c >= ' ' && c <= '~' && c != '"' && c != '\\' && c != '?';
        out += isPlain ? std::string(1, c) : std::string(digits);
    }
    return out + "\"";
}

constexpr std::size_t kColumns = 100;

/// Appends a list after an opening bracket. Breaks the lines before the column limit and aligns
/// them.
/// @param end  follows the list on its last line
void appendList(std::string& out, const std::vector<std::string>& items, const std::string& end) {
    std::size_t column = out.size() - (out.rfind('\n') + 1);
    const std::string indent(column, ' ');
    for (std::size_t i = 0; i < items.size(); ++i) {
        const std::string item = items[i] + (i + 1 < items.size() ? "," : end);
        if (i > 0 && column + 1 + item.size() > kColumns) {
            out.append("\n").append(indent);
            column = indent.size();
        } else if (i > 0) {
            out += ' ';
            ++column;
        }
        out += item;
        column += item.size();
    }
    if (items.empty()) out += end;
}

/// The parameters are the arguments that the text uses or the comment describes.
std::string functionFor(const Entry& entry, const std::set<std::string>& taken) {
    const ArgumentTypes types = PatternCheck(entry.text, entry.asIs).arguments;
    std::set<int> used = describedArguments(entry.comment);
    for (const auto& argument : types) used.insert(argument.first);
    const std::vector<int> numbers(used.begin(), used.end());
    const std::string function = functionOf(entry.name);
    std::set<std::string> others = taken;
    others.insert(function);
    const std::vector<std::string> names = parameterNames(numbers, entry.comment, others);
    std::vector<std::string> parameters, arguments;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto type = types.find(numbers[i]);
        const char* const kind = classOf(type != types.end() ? type->second : ArgumentType::kPlain);
        parameters.push_back("const " + std::string(kind) + "& " + names[i]);
        // A number that nothing uses gets an empty text.
        arguments.resize(static_cast<std::size_t>(numbers[i]), "{}");
        arguments.push_back(names[i]);
    }
    const std::string comment = commentLines(entry.comment, "");
    std::string head = "inline QBLTypedMessage " + function + "(";
    appendList(head, parameters, ") {");
    std::string list;
    for (const std::string& argument : arguments)
        list.append(list.empty() ? "" : ", ").append(argument);
    std::string body = "    return {kCatalogue, ::" + entry.name + ", {" + list + "}};";
    if (body.size() > kColumns) {
        body = "    return {kCatalogue,\n            ::" + entry.name + ",\n            {";
        appendList(body, arguments, "}};");
    }
    const std::string line = head + body.substr(3) + " }";
    const bool fits = line.size() <= kColumns && line.find('\n') == std::string::npos;
    return comment + (fits ? line + "\n" : head + "\n" + body + "\n}\n");
}

}  // namespace

std::string typedFunctions(const Entries& entries, const std::string& space,
                           const TypedCatalogue& catalogue) {
    char shape[16];
    std::snprintf(shape, sizeof shape, "0x%06X", catalogue.shape);
    std::string out = "namespace " + space + " {\n\ninline constexpr QBLTypedCatalogue kCatalogue" +
                      " = {" + literal(catalogue.base) + ", " + shape + "};\n\n";
    std::set<std::string> taken = {space, "kCatalogue"};
    for (const Entry& entry : entries) taken.insert(entry.name);
    for (const Entry& entry : entries) out += functionFor(entry, taken);
    return out + "\n}  // namespace " + space + "\n";
}

}  // namespace msgc
