#ifndef I18N_CPP_I18N_EXTERNAL_BUFFER_H
#define I18N_CPP_I18N_EXTERNAL_BUFFER_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// @file
/// Functions over UTF-16 text that ends with a zero unit, in the machine's byte order, at any
/// address. Sizes are in bytes, lengths in code units. A target must have room for what it gets:
/// nothing can be checked. Text beyond 1,073,741,822 units, whose size would not fit an int, is
/// ignored.
///
/// The error word, which may be null, receives 0, or -10 for a null pointer; nothing is done then.
///
/// Threads: any thread.

/// Appends a text, which may be the target itself. @return the target
QBL_API void* I18NExternalBufferConcat(void* target, const void* text, int* error);
/// Copies a text, which may overlap the target. @return the target
QBL_API void* I18NExternalBufferCopy(void* target, const void* text, int* error);
/// The size with the zero; 0 for null.
QBL_API int I18NExternalBufferNumBytes(const void* text, int* error);
/// A surrogate pair counts once.
QBL_API int I18NExternalBufferNumCodePoints(const void* text, int* error);

/// The same without error words; null is an empty text.
QBL_API void* I18NCodeUnitsConcat(void* target, const void* text);
QBL_API void* I18NCodeUnitsCopy(void* target, const void* text);
/// The size without the zero, and with it.
QBL_API int I18NCodeUnitsSize(const void* text);
QBL_API int I18NCodeUnitsNumBytes(const void* text);
QBL_API int I18NCodeUnitsLength(const void* text);
QBL_API int I18NCodeUnitsNumCodePoints(const void* text);
/// The width of a zero in an encoding: 1 for null and UTF-8, 2 for UTF-16; 0 for one that is not
/// there.
QBL_API int I18NCodeUnitsNullSize(const char* encoding);

/// Copy UTF-16 memory to a buffer and back: up to a zero, the length or the end of the target,
/// which always gets a zero.
/// @param length  of the source, in bytes; -1 up to the zero
/// @param size  of the target, in bytes
/// @return bytes written, the zero included; 0 for null or less room than for a zero
QBL_API int I18NUTF16ToExternalBuffer(const void* text, int length, void* buffer, int size);
QBL_API int I18NExternalBufferToUTF16(const void* buffer, int length, void* text, int size);

/// Compare UTF-16 with ASCII, by code units. @return negative, 0 or positive
QBL_API int i18n_compareUCharToChar(const void* text, const char* ascii);
QBL_API int i18n_compareCharToUChar(const char* ascii, const void* text);

#ifdef __cplusplus
}
#endif

#endif
