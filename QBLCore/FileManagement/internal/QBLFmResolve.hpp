#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMRESOLVE_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMRESOLVE_HPP

#include <string>

/// Opens the directory that contains the file at a path. Follows symbolic links. In a directory
/// such as /tmp (mode 1777), follows only links that belong to the caller or to the directory's
/// owner, and refuses other links with EACCES. The kernel can be configured to do the same. Refuses
/// a dangling link with ENOENT.
/// @param name  receives the file's name in the directory; the file need not exist
/// @return a descriptor that only serves to look up names (O_PATH), or -1 with errno set; EISDIR
///     for a path that does not name a file
/// @throws std::bad_alloc, std::length_error
int qblOpenParent(const char* path, std::string& name);

#endif
