#ifndef QBLCORE_FILEMANAGEMENT_SKIPROOTPATH_HPP
#define QBLCORE_FILEMANAGEMENT_SKIPROOTPATH_HPP

#include "QBLCore/Frame/QBLExport.h"

/// Measures the root of a path: "/" (1), a drive as "C:" (2) or "C:\" (3), or a network name as
/// "//server/share/", to the separator behind the share or the end of the text. Both "/" and "\"
/// separate. The text is read character by character in the encoding of the process's locale, so
/// that a byte that only looks like a separator inside a character is none.
///
/// Threads: any thread, as long as none changes the locale.
///
/// @param length  in bytes; 0 means up to the terminating zero
/// @return bytes of the root; 0 for a relative or an empty path; -1 when a character that had to
///     be looked at is not valid in the locale's encoding
QBL_API long skipRootPath(const char* path, unsigned long length = 0);

#endif
