#ifndef TOOLS_QBLCONV_SPOOL_HPP
#define TOOLS_QBLCONV_SPOOL_HPP

#include <cstddef>

namespace conv {

/// Opens an empty file without a name for reading and writing, in the directory of TMPDIR or in
/// /tmp. The system frees the file's space when the descriptor is closed, even if the process is
/// killed.
/// @return -1, with errno set, on failure
int openTemporary();

/// Writes a whole block to a descriptor.
/// @return false, with errno set, on failure
bool writeAll(int descriptor, const char* bytes, std::size_t size);

}  // namespace conv

#endif
