#ifndef I18N_CPP_I18N_CONVERTER_TYPES_H
#define I18N_CPP_I18N_CONVERTER_TYPES_H

#include <stddef.h>

#include "i18n/cpp/i18n_error_codes.h"

/// What a converter does with text that it cannot convert. Input means bytes that are converted to
/// Unicode, and output means Unicode that is converted to bytes.
enum I18NUnconvertiblePolicy {
    I18N_ESCAPE = 0,  ///< writes the text in hexadecimal: %X80, %U4E00
    I18N_LOOKUP = 1,  ///< uses the tables of the resource file; if they have no entry, writes
                      ///< U+FFFF for input, and the encoding's substitution character for output
    I18N_SUBSTITUTE = 2,    ///< writes the encoding's substitution character; for input, this is
                            ///< U+FFFD, or U+001A if the encoding's table says so
    I18N_USER_DEFINED = 3,  ///< calls a function of the caller
    I18N_STOP = 4           ///< the conversion fails with I18N_CONVERSION
};

/// The maximum number of code points, or of bytes, that a user-defined function may write.
///
/// Threads: the converting thread calls the function during the conversion.
enum { I18N_USER_REPLACEMENT_LIMIT = 32 };

#ifdef __cplusplus
extern "C" {
#endif

/// Replaces bytes that are not convertible.
/// @param encoding  the name that was given to the converter
/// @param codePoints  receives the replacement. Values that are not code points are left out.
///     Values after the first I18N_USER_REPLACEMENT_LIMIT are ignored. The conversion fails if the
///     replacement takes more than I18N_USER_REPLACEMENT_LIMIT UTF-16 code units
/// @param count  receives the number of code points; 0 on entry
/// @param error  I18N_OK on entry; any other value makes the conversion fail
typedef void (*I18NUserInputCallback)(const char* encoding, const char* bytes, int length,
                                      wchar_t* codePoints, int* count, I18NErrorCodes* error);

/// Replaces a code point that the encoding lacks.
/// @param bytes  receives the replacement in the encoding
/// @param count  receives the number of bytes; 0 on entry. If it stays 0, the code point is dropped
/// @param error  I18N_OK on entry; any other value makes the conversion fail
typedef void (*I18NUserOutputCallback)(wchar_t codePoint, const char* encoding, char* bytes,
                                       int* count, I18NErrorCodes* error);

#ifdef __cplusplus
}
#endif

#endif
