#ifndef I18N_CPP_I18N_CONVERTER_C_H
#define I18N_CPP_I18N_CONVERTER_C_H

#include "QBLCore/Frame/QBLExport.h"
#include "i18n/cpp/i18n_allocator.h"
#include "i18n/cpp/i18n_converter_types.h"

/// @file
/// I18NConverter for C. Each function is named after the operation of I18NConverter that it calls;
/// see i18n_converter.hpp for details. The last parameter receives I18N_OK or an error, and may be
/// null. The error is the operation's I18NErrorCodes value, or I18N_UNEXPECTED for any other error,
/// including exhausted memory. A null handle gives I18N_ARGUMENT. A function that fails returns 0
/// or null.
///
/// Threads: one thread at a time may use a handle.

#ifdef __cplusplus
extern "C" {
#endif

typedef struct I18NConverterOpaque* I18NConverterHandle;
/// An I18NString*. C code can only pass it on.
typedef struct I18NStringOpaque* I18NStringHandle;

/// @name Making and freeing a converter
/// @{

/// @return a converter; free it with i18nConverterFree()
QBL_API I18NConverterHandle i18nConverterCreate(const char* encoding, I18NErrorCodes* error);
/// Does nothing for null.
QBL_API void i18nConverterFree(I18NConverterHandle converter, I18NErrorCodes* error);
/// @}

/// @name Converting
/// @{

QBL_API void i18nConverterFromUnicode(I18NConverterHandle converter, char* destination, int size,
                                      const void* source, I18NErrorCodes* error);
QBL_API void i18nConverterFromUnicodeWithAllocator(I18NConverterHandle converter,
                                                   char** destination, int* size,
                                                   const void* source,
                                                   I18NStringAllocator allocator, void* context,
                                                   I18NErrorCodes* error);
QBL_API void i18nConverterToUnicode(I18NConverterHandle converter, void* destination, int size,
                                    const char* source, int length, I18NErrorCodes* error);
QBL_API void i18nConverterToUnicodeWithAllocator(I18NConverterHandle converter, void** destination,
                                                 int* size, const char* source, int length,
                                                 I18NStringAllocator allocator, void* context,
                                                 I18NErrorCodes* error);

QBL_API void i18nConverterFromUnicodeString(I18NConverterHandle converter, char** destination,
                                            int* size, I18NStringHandle source,
                                            I18NStringAllocator allocator, void* context,
                                            I18NErrorCodes* error);
QBL_API void i18nConverterToUnicodeString(I18NConverterHandle converter,
                                          I18NStringHandle destination, const char* source,
                                          int length, I18NErrorCodes* error);
/// @}

/// @name Encoding and policies
/// @{

/// Owned by the converter.
QBL_API const char* i18nConverterGetEncoding(I18NConverterHandle converter, I18NErrorCodes* error);

QBL_API int i18nConverterGetBuiltInUnconvertibleInputSequenceCallback(I18NConverterHandle converter,
                                                                      I18NErrorCodes* error);
QBL_API int i18nConverterGetBuiltInUnconvertibleOutputSequenceCallback(
    I18NConverterHandle converter, I18NErrorCodes* error);
QBL_API I18NUserInputCallback i18nConverterGetUserDefinedUnconvertibleInputSequenceCallback(
    I18NConverterHandle converter, I18NErrorCodes* error);
/// The misplaced "In" is part of the name, and stays.
QBL_API I18NUserOutputCallback i18nConverterGetUserDefinedInUnconvertibleOutputSequenceCallback(
    I18NConverterHandle converter, I18NErrorCodes* error);
QBL_API void i18nConverterSetBuiltInUnconvertibleInputSequenceCallback(
    I18NConverterHandle converter, int policy, I18NErrorCodes* error);
QBL_API void i18nConverterSetBuiltInUnconvertibleOutputSequenceCallback(
    I18NConverterHandle converter, int policy, I18NErrorCodes* error);
QBL_API void i18nConverterSetUserDefinedUnconvertibleInputSequenceCallback(
    I18NConverterHandle converter, I18NUserInputCallback callback, I18NErrorCodes* error);
QBL_API void i18nConverterSetUserDefinedUnconvertibleOutputSequenceCallback(
    I18NConverterHandle converter, I18NUserOutputCallback callback, I18NErrorCodes* error);
/// @}

/// @name Sizes
/// @{

QBL_API int i18nConverterNumLegacyBytes(I18NConverterHandle converter, int codeUnits,
                                        I18NErrorCodes* error);
QBL_API int i18nConverterNumLegacyCodePoints(I18NConverterHandle converter, int bytes,
                                             I18NErrorCodes* error);
QBL_API int i18nConverterNumUnicodeBytes(I18NConverterHandle converter, int codeUnits,
                                         I18NErrorCodes* error);
QBL_API int i18nConverterNumUnicodeCodePoints(I18NConverterHandle converter, int bytes,
                                              I18NErrorCodes* error);
QBL_API int i18nConverterSizeofLegacyNull(I18NConverterHandle converter, I18NErrorCodes* error);
QBL_API int i18nConverterSizeofUnicodeNull(I18NConverterHandle converter, I18NErrorCodes* error);
/// @}

#ifdef __cplusplus
}
#endif

#endif
