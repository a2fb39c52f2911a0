#include "QBLCore/Messages/QBLXmlEscape.hpp"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdio>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

const char kReplacement[] = "\xEF\xBF\xBD";

/// Returns the replacement of a character; null if the character stays.
const char* replacementOf(char c) {
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&apos;";
        case '\t':
        case '\n':
        case '\r':
            return nullptr;
        default:
            return static_cast<unsigned char>(c) < 0x20 ? kReplacement : nullptr;
    }
}

/// Returns the code point at an offset and moves the offset after it; below 0 for ill-formed UTF-8.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // of ICU's macro
#pragma GCC diagnostic ignored "-Wsign-conversion"
UChar32 nextOf(std::string_view utf8, std::size_t& i) {
    UChar32 c = 0;
    U8_NEXT(utf8.data(), i, utf8.size(), c);
    return c;
}
#pragma GCC diagnostic pop

/// Returns the reference for a mark that would combine with the ">" or quote before the text.
std::string reference(UChar32 mark) {
    char text[16];
    std::snprintf(text, sizeof text, "&#x%X;", static_cast<unsigned>(mark));
    return text;
}

}  // namespace

I18NString qblXmlEscape(const I18NString& text) {
    const std::string escaped = qblXmlEscape(std::string_view(text.toUtf8()));
    return I18NString(escaped.c_str());
}

std::string qblXmlEscape(std::string_view utf8) {
    QBL_ALLOC_TRY
    std::string escaped;
    escaped.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        if (static_cast<unsigned char>(utf8[i]) < 0x80) {
            const char c = utf8[i++];
            if (const char* replacement = replacementOf(c))
                escaped += replacement;
            else
                escaped += c;
            continue;
        }
        const std::size_t begin = i;
        const UChar32 c = nextOf(utf8, i);
        if (c < 0 || c == 0xFFFE || c == 0xFFFF)
            escaped += kReplacement;
        else if (begin == 0 && u_getCombiningClass(c) != 0)
            escaped += reference(c);
        else
            escaped.append(utf8, begin, i - begin);
    }
    return escaped;
    QBL_ALLOC_CATCH
}
