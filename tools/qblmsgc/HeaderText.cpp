#include "tools/qblmsgc/HeaderText.hpp"

#include <algorithm>

#include "tools/common/Shown.hpp"
#include "tools/qblmsgc/Paths.hpp"
#include "tools/qblmsgc/SourceParser.hpp"

namespace msgc {

namespace {

bool isAlphanumeric(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::string identifierOf(std::string text) {
    for (char& c : text)
        if (!isAlphanumeric(c)) c = '_';
    if (text.empty() || (text[0] >= '0' && text[0] <= '9') || isReserved(text))
        text.insert(0, "MSG_");
    return text;
}

}  // namespace

std::string commentLines(const std::string& comment, const std::string& indent) {
    std::string out;
    for (std::size_t begin = 0; begin < comment.size();) {
        const std::size_t end = comment.find('\n', begin);
        std::string line = comment.substr(begin, end - begin);
        // A backslash at the end of a line would continue the comment on the next line.
        line.erase(line.find_last_not_of(" \t\\") + 1);
        // The trigraph for a backslash, two question marks and a slash, would do the same.
        const std::size_t slash = line.size() - 1;
        if (line.size() >= 3 && line[slash] == '/' && line[slash - 1] == '?' &&
            line[slash - 2] == '?')
            line += '.';
        out.append(indent).append(line.empty() ? "///" : "/// ").append(line).append("\n");
        begin = end + 1;
    }
    return out;
}

std::string headerText(Entries entries, const std::string& fileName, const std::string& sourceName,
                       const TypedCatalogue& typed) {
    const bool isTyped = typed.shape != 0;
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [](const Entry& entry) { return entry.name.empty(); }),
                  entries.end());
    if (entries.empty()) return std::string();
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.id < b.id; });
    const std::string file = fileOf(fileName);
    std::string guard = identifierOf(file);
    std::transform(guard.begin(), guard.end(), guard.begin(), upper);
    std::string out = "// Made by qblmsgc from " + tools::shown(fileOf(sourceName)) + ".\n";
    out.append("#ifndef ").append(guard).append("\n#define ").append(guard);
    if (isTyped) out += "\n\n#include \"QBLCore/Messages/QBLTypedMessage.hpp\"";
    const std::string space = identifierOf(file.substr(0, file.find('.')));
    out.append("\n\nenum ").append(space).append(isTyped ? "_ids {\n" : " {\n");
    for (const Entry& entry : entries) {
        out.append(commentLines(entry.comment, "    "))
            .append("    ")
            .append(entry.name)
            .append(" = ");
        out.append(std::to_string(entry.id)).append(entry.id > 0x7FFFFFFF ? "u,\n" : ",\n");
    }
    out += "};\n\n";
    if (isTyped) out += typedFunctions(entries, space, typed) + "\n";
    return out + "#endif\n";
}

}  // namespace msgc
