#ifndef I18N_CPP_I18N_EXTERNAL_BUFFER_H
#define I18N_CPP_I18N_EXTERNAL_BUFFER_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// @file
/// Functions on null-terminated UTF-16 text in the machine's byte order, at any address. Sizes are
/// in bytes, and lengths are in code units. The target must have room for the result, because the
/// functions cannot check this. They use at most the first 1,073,741,822 units of a text, because
/// the size of a longer text would not fit an int.
///
/// The error parameter may be null. It receives 0 on success. It receives -10 if another argument
/// is null; the function does nothing else then.
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

/// The same functions without an error parameter. A null text counts as empty.
QBL_API void* I18NCodeUnitsConcat(void* target, const void* text);
QBL_API void* I18NCodeUnitsCopy(void* target, const void* text);
/// I18NCodeUnitsSize() does not count the NUL; I18NCodeUnitsNumBytes() does.
QBL_API int I18NCodeUnitsSize(const void* text);
QBL_API int I18NCodeUnitsNumBytes(const void* text);
QBL_API int I18NCodeUnitsLength(const void* text);
QBL_API int I18NCodeUnitsNumCodePoints(const void* text);
/// Returns the width of a NUL in an encoding: 1 for null and UTF-8, 2 for UTF-16, 0 for an encoding
/// that does not exist.
QBL_API int I18NCodeUnitsNullSize(const char* encoding);

/// These functions copy UTF-16 memory to a buffer and back. They stop at a NUL, at the length, or
/// at the end of the target, and always terminate the target with a NUL.
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
