#ifndef QBLCORE_BASE_QBLFILELOOK_HPP
#define QBLCORE_BASE_QBLFILELOOK_HPP

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <new>

#include "QBLCore/Base/QBLFileStatus.hpp"

/// Returns true if this error number means that the file does not exist, that its name is not
/// valid, or that we have no access to it. Other error numbers mean that the check itself failed:
/// descriptors or memory were exhausted, or the disk failed.
inline bool qblIsAbsence(int error) {
    switch (error) {
        case ENOENT:
        case ENOTDIR:
        case EACCES:
        case EPERM:
        case ELOOP:
        case ENAMETOOLONG:
        case ENXIO:
        case EINVAL:
            return true;
        default:
            return false;
    }
}

enum class QBLFileLook { kThere, kNotThere, kNotSeen };

/// Looks for a regular file that we may read.
/// @throws std::bad_alloc if the system runs out of memory
inline QBLFileLook qblLookForFile(const char* path) {
    QBLFileStatus status;
    if (status.get(path)) {
        if (!status.isRegular()) return QBLFileLook::kNotThere;
        if (faccessat(AT_FDCWD, path, R_OK, AT_EACCESS) == 0) return QBLFileLook::kThere;
    }
    if (errno == ENOMEM) throw std::bad_alloc();
    return qblIsAbsence(errno) ? QBLFileLook::kNotThere : QBLFileLook::kNotSeen;
}

#endif
