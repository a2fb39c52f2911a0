#ifndef I18N_CPP_I18N_EXTERNAL_BUFFER_H
#define I18N_CPP_I18N_EXTERNAL_BUFFER_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// @file
/// Functions on UTF-16 text in the machine's byte order that ends with a NUL, at any address. Sizes
/// are in bytes, and lengths are in code units. The target must have room for the result, since the
/// functions cannot check that. They ignore text beyond 1,073,741,822 units, whose size would not
/// fit an int.
///
/// The error parameter, which may be null, receives 0, or -10 for a null pointer. The function does
/// nothing else in that case.
///
/// Threads: any thread may call them.

/// Appends a text, which may be the target itself. @return the target
QBL_API void* I18NExternalBufferConcat(void* target, const void* text, int* error);
/// Copies a text, which may overlap the target. @return the target
QBL_API void* I18NExternalBufferCopy(void* target, const void* text, int* error);
/// Returns the size including the NUL; 0 for null.
QBL_API int I18NExternalBufferNumBytes(const void* text, int* error);
/// A surrogate pair counts once.
QBL_API int I18NExternalBufferNumCodePoints(const void* text, int* error);

/// The same functions without an error parameter; null is an empty text.
QBL_API void* I18NCodeUnitsConcat(void* target, const void* text);
QBL_API void* I18NCodeUnitsCopy(void* target, const void* text);
/// Return the size without the NUL, and with it.
QBL_API int I18NCodeUnitsSize(const void* text);
QBL_API int I18NCodeUnitsNumBytes(const void* text);
QBL_API int I18NCodeUnitsLength(const void* text);
QBL_API int I18NCodeUnitsNumCodePoints(const void* text);
/// Returns the width of a NUL in an encoding: 1 for null and UTF-8, 2 for UTF-16, 0 for an encoding
/// that does not exist.
QBL_API int I18NCodeUnitsNullSize(const char* encoding);

/// Copy UTF-16 memory to a buffer and back. They stop at a NUL, at the length, or at the end of the
/// target, and always terminate the target with a NUL.
/// @param length  of the source, in bytes; -1 means up to the NUL
/// @param size  of the target, in bytes
/// @return the number of bytes written including the NUL; 0 for null or a size below 2
QBL_API int I18NUTF16ToExternalBuffer(const void* text, int length, void* buffer, int size);
QBL_API int I18NExternalBufferToUTF16(const void* buffer, int length, void* text, int size);

/// Compare UTF-16 with ASCII by code units. @return a negative number, 0 or a positive number
QBL_API int i18n_compareUCharToChar(const void* text, const char* ascii);
QBL_API int i18n_compareCharToUChar(const char* ascii, const void* text);

#ifdef __cplusplus
}
#endif

#endif
