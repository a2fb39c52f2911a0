#ifndef QBLCORE_FILELOCK_M_LOCKFILE_HPP
#define QBLCORE_FILELOCK_M_LOCKFILE_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// @file
/// Advisory locks on whole files, between processes: the POSIX record locks of fcntl(2). They do
/// not exclude threads of one process from each other. A process loses its lock when it closes any
/// descriptor of the file.
///
/// Threads: any thread may call any function.

/// Locks a file.
/// @param fd  open for reading for a shared lock, open for writing for an exclusive lock
/// @param shared  if not 0, other processes can share the lock
/// @param wait  if not 0, waits while other processes hold the lock, and continues to wait after a
///     signal; if 0, fails at once
/// @return 1 if the file is locked; otherwise 0 with errno set
QBL_API int M_LockFile(int fd, int shared, int wait);
/// Unlocks a file.
/// @return 1, even if the file was not locked; 0 on failure
QBL_API int M_UnLockFile(int fd);

#endif
