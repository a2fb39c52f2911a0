#ifndef I18N_CPP_I18N_CONVERTER_TYPES_H
#define I18N_CPP_I18N_CONVERTER_TYPES_H

#include <stddef.h>

#include "i18n/cpp/i18n_error_codes.h"

/// What a converter does with text that it cannot convert. Input is bytes on their way to Unicode,
/// output is Unicode on its way to bytes.
enum I18NUnconvertiblePolicy {
    I18N_ESCAPE = 0,      ///< writes it in digits: %X80, %U4E00
    I18N_LOOKUP = 1,      ///< asks the tables of the resource file; without an entry, input becomes
                          ///< U+FFFF and output the encoding's substitution character
    I18N_SUBSTITUTE = 2,  ///< the encoding's substitution character; of input that is U+FFFD, or
                          ///< U+001A where its table says so
    I18N_USER_DEFINED = 3,  ///< asks a function of the caller's
    I18N_STOP = 4           ///< the conversion fails with I18N_CONVERSION
};

/// How many code points, and how many bytes, such a function of the caller's may write.
///
/// Threads: it is called by the thread that converts, within the conversion.
enum { I18N_USER_REPLACEMENT_LIMIT = 32 };

#ifdef __cplusplus
extern "C" {
#endif

/// Replaces bytes that are not convertible.
/// @param encoding  the converter's, as it was named
/// @param codePoints  receives the replacement; what is no code point is left out, and what is
///        beyond I18N_USER_REPLACEMENT_LIMIT cut off. If these need more than so many UTF-16 code
///        units, the conversion fails
/// @param count  receives the number of code points; 0 on entry
/// @param error  I18N_OK on entry; anything else makes the conversion fail
typedef void (*I18NUserInputCallback)(const char* encoding, const char* bytes, int length,
                                      wchar_t* codePoints, int* count, I18NErrorCodes* error);

/// Replaces a code point that the encoding does not have.
/// @param bytes  receives the replacement, in the encoding
/// @param count  receives the number of bytes; 0 on entry, and then the code point is dropped
/// @param error  I18N_OK on entry; anything else makes the conversion fail
typedef void (*I18NUserOutputCallback)(wchar_t codePoint, const char* encoding, char* bytes,
                                       int* count, I18NErrorCodes* error);

#ifdef __cplusplus
}
#endif

#endif
