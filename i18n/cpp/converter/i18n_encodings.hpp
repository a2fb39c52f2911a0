#ifndef I18N_CPP_CONVERTER_I18N_ENCODINGS_HPP
#define I18N_CPP_CONVERTER_I18N_ENCODINGS_HPP

/// These functions look only at the name of an encoding. They ignore case, and return false for
/// null and for an empty name, unless stated otherwise.

/// Returns true for null, an empty name, UTF8, UTF-8 and, deliberately, ASCII, for which the UTF-8
/// converter is used.
bool i18nIsUTF8(const char* encoding);
/// Returns true for names that begin with ISO-8859 or ISO8859.
bool i18nIsISO8859(const char* encoding);
/// Returns true for WINDOWS-1252.
bool i18nIsWindows1252(const char* encoding);
/// Returns true for UTF16, UTF-16, UCS2, UCS-2 and names that begin with UTF16_P, such as ICU's
/// name for UTF-16 in the platform's byte order.
bool i18nIsUTF16(const char* encoding);
/// Returns true for UTF32, UTF-32, UCS4, UCS-4 and names that begin with UTF32_P.
bool i18nIsUTF32(const char* encoding);

/// Returns true for UTF-8, windows-1252 and ISO-8859, in which ASCII text has the same bytes as in
/// ASCII.
inline bool i18nKeepsASCII(const char* encoding) {
    return i18nIsUTF8(encoding) || i18nIsWindows1252(encoding) || i18nIsISO8859(encoding);
}

#endif
