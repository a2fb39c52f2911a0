#ifndef TOOLS_QBLCONV_SPOOL_HPP
#define TOOLS_QBLCONV_SPOOL_HPP

#include <cstddef>

namespace conv {

/// Opens an empty file without a name for reading and writing, in the directory of TMPDIR or in
/// /tmp. Its space is free again when the descriptor is closed, however the process ends.
/// @return -1, with errno set, on failure
int openTemporary();

/// Writes all of a block to a descriptor. @return false, with errno set, on failure
bool writeAll(int descriptor, const char* bytes, std::size_t size);

}  // namespace conv

#endif
