#include "i18n/cpp/internal/i18n_encodings.hpp"

namespace {

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool begins(const char* name, const char* prefix) {
    for (; *prefix != '\0'; ++name, ++prefix)
        if (upper(*name) != *prefix) return false;
    return true;
}

bool is(const char* name, const char* other) {
    for (; *other != '\0'; ++name, ++other)
        if (upper(*name) != *other) return false;
    return *name == '\0';
}

const char* textOf(const char* encoding) { return encoding != nullptr ? encoding : ""; }

}  // namespace

bool i18nIsUTF8(const char* encoding) {
    const char* name = textOf(encoding);
    return *name == '\0' || (begins(name, "UTF") && (is(name + 3, "-8") || is(name + 3, "8"))) ||
           is(name, "ASCII");
}

bool i18nIsISO8859(const char* encoding) {
    const char* name = textOf(encoding);
    return begins(name, "ISO-8859") || begins(name, "ISO8859");
}

bool i18nIsWindows1252(const char* encoding) { return is(textOf(encoding), "WINDOWS-1252"); }

bool i18nIsUTF16(const char* encoding) {
    const char* name = textOf(encoding);
    return is(name, "UTF16") || is(name, "UTF-16") || is(name, "UCS2") || is(name, "UCS-2") ||
           begins(name, "UTF16_P");
}

bool i18nIsUTF32(const char* encoding) {
    const char* name = textOf(encoding);
    return is(name, "UTF32") || is(name, "UTF-32") || is(name, "UCS4") || is(name, "UCS-4") ||
           begins(name, "UTF32_P");
}
