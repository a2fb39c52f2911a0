#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMNOCANCEL_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMNOCANCEL_HPP

#include <unistd.h>

#include <cerrno>

#include "QBLCore/Threads/internal/QBLNoCancel.hpp"

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
