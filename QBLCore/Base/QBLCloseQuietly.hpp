#ifndef QBLCORE_BASE_QBLCLOSEQUIETLY_HPP
#define QBLCORE_BASE_QBLCLOSEQUIETLY_HPP

#include <unistd.h>

#include <cerrno>

#include "QBLCore/Base/QBLNoCancel.hpp"

/// Closing a file is where a cancellation may take effect.
using QBLFmNoCancel = QBLNoCancel;

/// Closes a descriptor, leaving errno alone.
inline void qblCloseQuietly(int fd) {
    const QBLFmNoCancel noCancel;
    const int error = errno;
    ::close(fd);
    errno = error;
}

#endif
