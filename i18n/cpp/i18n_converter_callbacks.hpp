#ifndef I18N_CPP_I18N_CONVERTER_CALLBACKS_HPP
#define I18N_CPP_I18N_CONVERTER_CALLBACKS_HPP

#include <unicode/ucnv.h>

#include "QBLCore/Frame/QBLExport.h"
#include "i18n/cpp/i18n_converter.hpp"

/// @file
/// The five policies as ICU callbacks, for programs that install them in their own ICU converters.
/// The context of the lookup and user-defined callbacks is an I18NInputCallbackContext or
/// I18NOutputCallbackContext that lives as long as the converter. The other callbacks take the same
/// contexts as the corresponding ICU callbacks; null selects the default.
///
/// Threads: as for the converter that calls them.

extern "C" {

QBL_API void ESCAPE_UNCONVERTIBLE_INPUT_CALLBACK(const void* context, UConverterToUnicodeArgs* args,
                                                 const char* bytes, int32_t length,
                                                 UConverterCallbackReason reason,
                                                 UErrorCode* status);
QBL_API void LOOKUP_UNCONVERTIBLE_INPUT_CALLBACK(const void* context, UConverterToUnicodeArgs* args,
                                                 const char* bytes, int32_t length,
                                                 UConverterCallbackReason reason,
                                                 UErrorCode* status);
QBL_API void SUBSTITUTE_UNCONVERTIBLE_INPUT_CALLBACK(const void* context,
                                                     UConverterToUnicodeArgs* args,
                                                     const char* bytes, int32_t length,
                                                     UConverterCallbackReason reason,
                                                     UErrorCode* status);
QBL_API void USER_DEFINED_UNCONVERTIBLE_INPUT_CALLBACK(const void* context,
                                                       UConverterToUnicodeArgs* args,
                                                       const char* bytes, int32_t length,
                                                       UConverterCallbackReason reason,
                                                       UErrorCode* status);
QBL_API void STOP_UNCONVERTIBLE_INPUT_CALLBACK(const void* context, UConverterToUnicodeArgs* args,
                                               const char* bytes, int32_t length,
                                               UConverterCallbackReason reason, UErrorCode* status);

QBL_API void ESCAPE_UNCONVERTIBLE_OUTPUT_CALLBACK(
    const void* context, UConverterFromUnicodeArgs* args, const UChar* units, int32_t length,
    UChar32 codePoint, UConverterCallbackReason reason, UErrorCode* status);
QBL_API void LOOKUP_UNCONVERTIBLE_OUTPUT_CALLBACK(
    const void* context, UConverterFromUnicodeArgs* args, const UChar* units, int32_t length,
    UChar32 codePoint, UConverterCallbackReason reason, UErrorCode* status);
QBL_API void SUBSTITUTE_UNCONVERTIBLE_OUTPUT_CALLBACK(
    const void* context, UConverterFromUnicodeArgs* args, const UChar* units, int32_t length,
    UChar32 codePoint, UConverterCallbackReason reason, UErrorCode* status);
QBL_API void USER_DEFINED_UNCONVERTIBLE_OUTPUT_CALLBACK(
    const void* context, UConverterFromUnicodeArgs* args, const UChar* units, int32_t length,
    UChar32 codePoint, UConverterCallbackReason reason, UErrorCode* status);
QBL_API void STOP_UNCONVERTIBLE_OUTPUT_CALLBACK(const void* context,
                                                UConverterFromUnicodeArgs* args, const UChar* units,
                                                int32_t length, UChar32 codePoint,
                                                UConverterCallbackReason reason,
                                                UErrorCode* status);
}

#endif
