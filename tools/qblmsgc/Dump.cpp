#include "tools/qblmsgc/Dump.hpp"

#include <unicode/uchar.h>

#include "tools/common/Utf8.hpp"
#include "tools/qblmsgc/PatternCheck.hpp"

namespace msgc {

namespace {

bool isUnseen(int codePoint) {
    const int type = u_charType(codePoint);
    return codePoint != ' ' &&
           (type == U_CONTROL_CHAR || type == U_FORMAT_CHAR || type == U_SPACE_SEPARATOR ||
            type == U_LINE_SEPARATOR || type == U_PARAGRAPH_SEPARATOR);
}

std::string escaped(int codePoint) {
    std::string out = "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) out += "0123456789ABCDEF"[codePoint >> shift & 15];
    return out;
}

std::string quoted(const std::string& text) {
    std::string out = "\"";
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t begin = i;
        const int c = tools::nextCodePoint(text, i, text.size());
        if (c == '\n')
            out += i < text.size() ? "\\n\"\n    \"" : "\\n";
        else if (c == '"' || c == '\\')
            out.append("\\").append(1, static_cast<char>(c));
        else if (c == '\r' || c == '\t')
            out += c == '\r' ? "\\r" : "\\t";
        else if (c <= 0xFFFF && isUnseen(c))
            out += escaped(c);
        else
            out.append(text, begin, i - begin);
    }
    return out + "\"";
}

}  // namespace

std::string dumpSource(unsigned id, const std::string& text) {
    const char* const between = PatternCheck(text, false).hasErrors() ? " = " : " ";
    return std::to_string(id) + between + quoted(text) + "\n";
}

}  // namespace msgc
