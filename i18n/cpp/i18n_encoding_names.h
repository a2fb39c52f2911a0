#ifndef I18N_CPP_I18N_ENCODING_NAMES_H
#define I18N_CPP_I18N_ENCODING_NAMES_H

#include "QBLCore/Frame/QBLExport.h"

/// @file
/// Which encodings there are converters for, and what they are called.
///
/// Threads: any thread may call any of these at any time.

#ifdef __cplusplus
extern "C" {
#endif

/// How many encodings there are. The first call opens each of them once.
QBL_API int I18NCountEncodings(void);
/// A name of an encoding, as I18NConverter takes it.
/// @param encoding  from 0
/// @param name  0 is the usual one: of MIME, else of IANA, else ICU's own; all that ICU knows
///        follow, this one among them
/// @return owned by ICU, for the life of the process; null if there is no such one
QBL_API const char* I18NGetEncodingName(int encoding, int name);

#ifdef __cplusplus
}
#endif

#endif
