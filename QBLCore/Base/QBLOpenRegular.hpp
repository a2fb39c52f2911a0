#ifndef QBLCORE_BASE_QBLOPENREGULAR_HPP
#define QBLCORE_BASE_QBLOPENREGULAR_HPP

#include <fcntl.h>

#include <cerrno>

#include "QBLCore/Base/QBLCloseQuietly.hpp"
#include "QBLCore/Base/QBLFileStatus.hpp"

/// Opens a regular file in a directory where other users may have put something else under its
/// name. Does not follow a symbolic link, and does not wait for a pipe. Refuses a file with several
/// hard links, because the file may be a file of the caller in another directory.
/// @param flags  as for open(2)
/// @return the descriptor; -1 with errno set on failure
inline int qblOpenRegular(const char* path, int flags, QBLFileStatus& status, unsigned mode = 0) {
    const int fd = open64(path, flags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, mode);
    if (fd < 0) return -1;
    const bool known = status.get(fd);
    if (known && status.isRegular() && status.links() == 1) return fd;
    if (known) errno = EINVAL;
    qblCloseQuietly(fd);
    return -1;
}

#endif
