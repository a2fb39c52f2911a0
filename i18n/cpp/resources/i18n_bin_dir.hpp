#ifndef I18N_CPP_RESOURCES_I18N_BIN_DIR_HPP
#define I18N_CPP_RESOURCES_I18N_BIN_DIR_HPP

#include <string>

/// Finds the installation's bin directory, unless an earlier call has found it. The first of these
/// that names one counts; an empty variable is as good as none:
///
///  - the environment variable TAV_EXEC_PATH;
///  - ./bin below TAV_ROOT;
///  - the first directory of LD_LIBRARY_PATH that holds a readable libQBLCore.so;
///  - ../bin if there is a readable ../configuration/tavstartup.xml;
///  - ./bin below what the first line of ./tavroot.link names, of which 4096 bytes count.
///
/// Threads: any thread, as long as none changes the environment.
/// @throws QBLOutOfMemoryError
void determineBinDir();

/// @return the directory that was found; empty if none was, or nobody has looked yet.
std::string i18nBinDir();

/// Puts the bin directory in the place of "$@" at the beginning of a path. While there is none, the
/// path is what follows "$@", and so relative to the working directory.
std::string i18nResolveBinDir(const std::string& path);

/// Where the installed files that every architecture shares are: share/qblcore beside the directory
/// of the library, or beside the one above it, for lib/ARCHITECTURE. Links to directories are
/// followed first, so that a library loaded as /lib/... has the files of /usr.
/// @return the first that is a directory, or else the first; empty if the library's own place is
///     not known.
std::string i18nShareDirectory();

#endif
