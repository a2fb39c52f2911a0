#ifndef QBLCORE_FILEMANAGEMENT_SKIPROOTPATH_HPP
#define QBLCORE_FILEMANAGEMENT_SKIPROOTPATH_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// Returns the length of the root of a path: "/" (1), a drive such as "C:" (2) or "C:\" (3), or a
/// network name such as "//server/share/", including the separator after the share if there is one.
/// Both "/" and "\" are separators. Reads the text character by character in the encoding of the
/// process's locale, so that a byte inside a character never counts as a separator.
///
/// Threads: any thread may call it, but no thread may change the locale during the call.
///
/// @param length  in bytes; 0 means up to the terminating NUL
/// @return the length in bytes; 0 for a relative or an empty path; -1 if the function reads a
///     character that is invalid in the locale's encoding
QBL_API long skipRootPath(const char* path, unsigned long length = 0);

#endif
