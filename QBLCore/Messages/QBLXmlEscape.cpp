#include "QBLCore/Messages/QBLXmlEscape.hpp"

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "i18n/cpp/i18n_string.hpp"

namespace {

/// What stands for a character; null for itself.
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
            return static_cast<unsigned char>(c) < 0x20 ? "\xEF\xBF\xBD" : nullptr;
    }
}

}  // namespace

I18NString qblXmlEscape(const I18NString& text) {
    const std::string escaped = qblXmlEscape(std::string_view(text.toUtf8()));
    return I18NString(escaped.c_str());
}

std::string qblXmlEscape(std::string_view utf8) {
    QBL_ALLOC_TRY
    std::string escaped;
    for (const char c : utf8) {
        const char* replacement = replacementOf(c);
        if (replacement != nullptr)
            escaped += replacement;
        else
            escaped += c;
    }
    return escaped;
    QBL_ALLOC_CATCH
}
