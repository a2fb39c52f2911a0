#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMRESOLVE_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMRESOLVE_HPP

#include <string>

/// Opens the directory that holds the file which a path leads to. Symbolic links are followed,
/// but in a directory where everybody may make files and only remove their own (mode 1777), only
/// those that belong to the caller or to the directory's owner; EACCES refuses others, as the
/// kernel can be told to. A link that leads nowhere is refused with ENOENT.
/// @param name  receives the file's name in the directory; there need not be a file
/// @return a descriptor that only serves to look names up (O_PATH), or -1 with errno set; EISDIR
///     for a path that names no file
/// @throws std::bad_alloc, std::length_error
int qblOpenParent(const char* path, std::string& name);

#endif
