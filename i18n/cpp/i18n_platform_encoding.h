#ifndef I18N_CPP_I18N_PLATFORM_ENCODING_H
#define I18N_CPP_I18N_PLATFORM_ENCODING_H

#include "QBLCore/Frame/QBLExport.h"

/// @file
/// Threads: any thread may call any of these at any time.

#ifdef __cplusplus
extern "C" {
#endif

/// The encoding that ICU takes for the platform's, "UTF-8" if it takes none. The answer to the
/// first call holds for the life of the process, and so does the text.
QBL_API const char* I18NGetPlatformDefaultEncoding(void);
/// The name of the same encoding in the register of IANA; its own if it has none there.
QBL_API const char* I18NGetNormalizedPlatformDefaultEncoding(void);
/// "UTF-8".
QBL_API const char* I18NGetToolkitDefaultEncoding(void);

#ifdef __cplusplus
}
#endif

#endif
