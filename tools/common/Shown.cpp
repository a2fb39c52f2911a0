#include "tools/common/Shown.hpp"

#include <unicode/uchar.h>

#include <algorithm>

#include "tools/common/Utf8.hpp"

namespace tools {

namespace {

constexpr int kNonJoiner = 0x200C, kJoiner = 0x200D;

bool isHarmless(int c) {
    if (c < 0x7F) return c >= 0x20;
    if (c == kNonJoiner || c == kJoiner) return true;
    const int type = u_charType(c);
    return type != U_CONTROL_CHAR && type != U_FORMAT_CHAR && type != U_LINE_SEPARATOR &&
           type != U_PARAGRAPH_SEPARATOR && !U_IS_UNICODE_NONCHAR(c);
}

/// Returns true if the text is printable ASCII without backslashes, as most names are.
bool isPlain(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return c >= 0x20 && c < 0x7F && c != '\\'; });
}

/// @param kept  unsafe characters that stay unchanged
/// @param isQuoting  whether to write a backslash before an x as \xHH
std::string withoutControls(const std::string& text, const char* kept, bool isQuoting) {
    if (isPlain(text)) return text;
    const std::string stays = kept;
    std::string out;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t begin = i;
        const int c = nextCodePoint(text, i, text.size());
        const bool isLikeOurs = isQuoting && c == '\\' && text.compare(i, 1, "x") == 0;
        const bool isKept = c > 0 && c < 0x80 && stays.find(static_cast<char>(c)) != stays.npos;
        if (isKept || (c >= 0 && isHarmless(c) && !isLikeOurs)) {
            out.append(text, begin, i - begin);
            continue;
        }
        i = std::max(i, begin + 1);
        out += inHex(text.substr(begin, i - begin));
    }
    return out;
}

}  // namespace

std::string inHex(const std::string& bytes) {
    std::string out;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        out.append("\\x").append(1, "0123456789ABCDEF"[byte >> 4]);
        out.append(1, "0123456789ABCDEF"[byte & 15]);
    }
    return out;
}

std::string shown(const std::string& name) { return withoutControls(name, "", true); }

std::string shownText(const std::string& text) { return withoutControls(text, "\n\t", false); }

}  // namespace tools
