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

/// Writes the lines of a comment as comments of the header.
std::string commentLines(const std::string& comment) {
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
        out += line.empty() ? "    ///\n" : "    /// " + line + "\n";
        begin = end + 1;
    }
    return out;
}

}  // namespace

std::string headerText(Entries entries, const std::string& fileName,
                       const std::string& sourceName) {
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
    out.append("\n\nenum ").append(identifierOf(file.substr(0, file.find('.')))).append(" {\n");
    for (const Entry& entry : entries) {
        out.append(commentLines(entry.comment)).append("    ").append(entry.name).append(" = ");
        out.append(std::to_string(entry.id)).append(entry.id > 0x7FFFFFFF ? "u,\n" : ",\n");
    }
    return out + "};\n\n#endif\n";
}

}  // namespace msgc
