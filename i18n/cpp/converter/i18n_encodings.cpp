#include "i18n/cpp/converter/i18n_encodings.hpp"

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

/// Returns the part after "UTF" and an optional hyphen; null for other names. Has no loop, because
/// every conversion calls this function.
const char* numberOfUTF(const char* name) {
    constexpr int kNoCase = ~('a' - 'A');
    if ((name[0] & kNoCase) != 'U' || (name[1] & kNoCase) != 'T' || (name[2] & kNoCase) != 'F')
        return nullptr;
    return name + (name[3] == '-' ? 4 : 3);
}

const char* orEmpty(const char* encoding) { return encoding != nullptr ? encoding : ""; }

}  // namespace

bool i18nIsUTF8(const char* encoding) {
    if (encoding == nullptr || *encoding == '\0') return true;
    if (const char* const number = numberOfUTF(encoding))
        return number[0] == '8' && number[1] == '\0';
    return is(encoding, "ASCII");
}

bool i18nIsISO8859(const char* encoding) {
    const char* name = orEmpty(encoding);
    return begins(name, "ISO-8859") || begins(name, "ISO8859");
}

bool i18nIsWindows1252(const char* encoding) { return is(orEmpty(encoding), "WINDOWS-1252"); }

bool i18nIsUTF16(const char* encoding) {
    const char* name = orEmpty(encoding);
    if (const char* const number = numberOfUTF(name))
        return number[0] == '1' && number[1] == '6' &&
               (number[2] == '\0' || (number == name + 3 && begins(number + 2, "_P")));
    return is(name, "UCS2") || is(name, "UCS-2");
}

bool i18nIsUTF32(const char* encoding) {
    const char* name = orEmpty(encoding);
    return is(name, "UTF32") || is(name, "UTF-32") || is(name, "UCS4") || is(name, "UCS-4") ||
           begins(name, "UTF32_P");
}
