#ifndef I18N_CPP_CONVERTER_I18N_ENCODINGS_HPP
#define I18N_CPP_CONVERTER_I18N_ENCODINGS_HPP

/// What can be told from an encoding's name alone. Letters count in either case unless said; null
/// or empty is false unless said.

/// Null, empty, UTF8, UTF-8, and deliberately ASCII, which the UTF-8 converter serves.
bool i18nIsUTF8(const char* encoding);
/// Begins with ISO-8859 or ISO8859.
bool i18nIsISO8859(const char* encoding);
/// WINDOWS-1252.
bool i18nIsWindows1252(const char* encoding);
/// UTF16, UTF-16, UCS2, UCS-2, or begins with UTF16_P, as ICU's name for the platform's byte order.
bool i18nIsUTF16(const char* encoding);
/// UTF32, UTF-32, UCS4, UCS-4, or begins with UTF32_P.
bool i18nIsUTF32(const char* encoding);

/// One in which ASCII text is what it is.
inline bool i18nKeepsASCII(const char* encoding) {
    return i18nIsUTF8(encoding) || i18nIsWindows1252(encoding) || i18nIsISO8859(encoding);
}

#endif
