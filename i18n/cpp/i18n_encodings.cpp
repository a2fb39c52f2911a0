#include "i18n/cpp/internal/i18n_encodings.hpp"

#include <string_view>

namespace {

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool begins(std::string_view name, std::string_view prefix) {
    if (name.size() < prefix.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i)
        if (upper(name[i]) != prefix[i]) return false;
    return true;
}

bool is(std::string_view name, std::string_view other) {
    return name.size() == other.size() && begins(name, other);
}

std::string_view viewOf(const char* encoding) {
    return encoding != nullptr ? std::string_view(encoding) : std::string_view();
}

}  // namespace

bool i18nIsUTF8(const char* encoding) {
    const std::string_view name = viewOf(encoding);
    return name.empty() || is(name, "UTF8") || is(name, "UTF-8") || is(name, "ASCII");
}

bool i18nIsISO8859(const char* encoding) {
    const std::string_view name = viewOf(encoding);
    return begins(name, "ISO-8859") || begins(name, "ISO8859");
}

bool i18nIsWindows1252(const char* encoding) { return is(viewOf(encoding), "WINDOWS-1252"); }

bool i18nIsUTF16(const char* encoding) {
    const std::string_view name = viewOf(encoding);
    return is(name, "UTF16") || is(name, "UTF-16") || is(name, "UCS2") || is(name, "UCS-2") ||
           begins(name, "UTF16_P");
}

bool i18nIsUTF32(const char* encoding) {
    const std::string_view name = viewOf(encoding);
    return is(name, "UTF32") || is(name, "UTF-32") || is(name, "UCS4") || is(name, "UCS-4") ||
           begins(name, "UTF32_P");
}
