#ifndef QBLCORE_BASE_QBLCLOSEQUIETLY_HPP
#define QBLCORE_BASE_QBLCLOSEQUIETLY_HPP

#include <unistd.h>

#include "QBLCore/Base/QBLKeepErrno.hpp"
#include "QBLCore/Base/QBLNoCancel.hpp"

/// Closes a descriptor, leaving errno alone. Closing a file is where a cancellation would take
/// effect.
inline void qblCloseQuietly(int fd) {
    const QBLNoCancel noCancel;
    const QBLKeepErrno keepErrno;
    ::close(fd);
}

#endif
