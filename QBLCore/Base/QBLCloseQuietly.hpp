#ifndef QBLCORE_BASE_QBLCLOSEQUIETLY_HPP
#define QBLCORE_BASE_QBLCLOSEQUIETLY_HPP

#include <unistd.h>

#include "QBLCore/Base/QBLKeepErrno.hpp"
#include "QBLCore/Base/QBLNoCancel.hpp"

/// Closes a descriptor as close(2) does, but defers cancellation: a cancelled close(2) may have
/// closed the descriptor or not.
inline int qblClose(int fd) {
    const QBLNoCancel noCancel;
    return ::close(fd);
}

/// Closes a descriptor. Keeps errno, and defers cancellation, because close(2) is a cancellation
/// point.
inline void qblCloseQuietly(int fd) {
    const QBLNoCancel noCancel;
    const QBLKeepErrno keepErrno;
    ::close(fd);
}

#endif
