#ifndef QBLCORE_FILELOCK_M_LOCKFILE_HPP
#define QBLCORE_FILELOCK_M_LOCKFILE_HPP

#include "QBLCore/Frame/QBLExport.h"

/// @file
/// Advisory locks over whole files, between processes: the record locks of fcntl(2) in POSIX. They
/// do not exclude threads of one process from each other, and a process loses its lock when it
/// closes any descriptor of the file.
///
/// Threads: any thread.

/// @param fd  open for reading for a shared lock, for writing for an exclusive one
/// @param shared  non-zero for a lock that others can share
/// @param wait  non-zero waits while others are in the way, through signals too; 0 fails at once
/// @return 1; 0 when not locked, with errno telling why
QBL_API int M_LockFile(int fd, int shared, int wait);
/// @return 1, also for a file that was not locked; 0 on failure
QBL_API int M_UnLockFile(int fd);

#endif
