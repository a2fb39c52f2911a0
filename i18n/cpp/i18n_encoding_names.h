#ifndef I18N_CPP_I18N_ENCODING_NAMES_H
#define I18N_CPP_I18N_ENCODING_NAMES_H

#include "QBLCore/Frame/QBLExport.h"

/// @file
/// The encodings that have converters, and their names.
///
/// Threads: any thread may call these functions at any time.

#ifdef __cplusplus
extern "C" {
#endif

/// Returns the number of encodings. The first call opens each encoding once.
QBL_API int I18NCountEncodings(void);
/// Returns a name of an encoding, in the form that I18NConverter takes.
/// @param encoding  the number of the encoding, from 0
/// @param name  0 gives the usual name: the MIME name, else the IANA name, else ICU's own. Numbers
///     from 1 give all names that ICU knows, including the usual name
/// @return owned by ICU, valid for the life of the process; null if there is no such name
QBL_API const char* I18NGetEncodingName(int encoding, int name);

#ifdef __cplusplus
}
#endif

#endif
