#ifndef QBLCORE_BASE_QBLOPENREGULAR_HPP
#define QBLCORE_BASE_QBLOPENREGULAR_HPP

#include <fcntl.h>

#include <cerrno>

#include "QBLCore/Base/QBLCloseQuietly.hpp"
#include "QBLCore/Base/QBLFileStatus.hpp"

/// Opens a regular file by its own name, in a directory where somebody else may have put something
/// in its place: a link is not followed, a pipe not waited for, and a file that has another name
/// too is refused, because that may be a file of ours elsewhere.
/// @param flags  as of open(2)
/// @return -1 with errno set
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
