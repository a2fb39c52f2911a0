#ifndef I18N_CPP_RESOURCES_I18N_BIN_DIR_HPP
#define I18N_CPP_RESOURCES_I18N_BIN_DIR_HPP

#include <string>

/// Finds the installation's bin directory, unless an earlier call has found it. Uses the first of
/// these places that gives a directory, and ignores empty environment variables:
///
///  - the environment variable TAV_EXEC_PATH;
///  - ./bin below TAV_ROOT;
///  - the first directory of LD_LIBRARY_PATH that holds a readable libQBLCore.so;
///  - ../bin if there is a readable ../configuration/tavstartup.xml;
///  - ./bin below the directory that the first line of ./tavroot.link names (at most 4096 bytes).
///
/// The library looks for its files in these places, in this order:
///
///  - i18n_res.xml: the bin directory, or the working directory if no bin directory is known; then
///    the share directory;
///  - language files: the bin directory, the working directory, the share directory;
///  - catalogues: QBLResourceFactory describes these places.
///
/// Threads: any thread, as long as no thread changes the environment.
/// @throws QBLOutOfMemoryError
void determineBinDir();

/// @return the directory that was found; empty if none was found or determineBinDir() was not
///     called
std::string i18nBinDir();

/// Replaces "$@" at the beginning of a path by the bin directory. If no bin directory is known,
/// removes "$@", so that the path is relative to the working directory.
std::string i18nResolveBinDir(const std::string& path);

/// Returns the directory of the installed files that all architectures share. It is share/qblcore
/// next to the library's directory or, for a library in lib/ARCHITECTURE, next to lib.
/// Symbolic links are resolved first, so that a library loaded as /lib/... uses the files of /usr.
/// @return the first of the two that is a directory, else the first; empty if the library's
///     directory is not known
std::string i18nShareDirectory();

#endif
