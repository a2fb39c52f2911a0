#ifndef I18N_CPP_I18N_PLATFORM_ENCODING_H
#define I18N_CPP_I18N_PLATFORM_ENCODING_H

#include "QBLCore/Frame/QBLExport.h"

/// @file
/// Threads: any thread may call these functions at any time.

#ifdef __cplusplus
extern "C" {
#endif

/// Returns the encoding that ICU uses as the platform's default, or "UTF-8" if ICU has no default.
/// Later calls return the same text, which stays valid for the life of the process.
QBL_API const char* I18NGetPlatformDefaultEncoding(void);
/// Returns the IANA name of that encoding, or its ICU name if IANA does not list the encoding.
QBL_API const char* I18NGetNormalizedPlatformDefaultEncoding(void);
/// Returns "UTF-8".
QBL_API const char* I18NGetToolkitDefaultEncoding(void);

#ifdef __cplusplus
}
#endif

#endif
