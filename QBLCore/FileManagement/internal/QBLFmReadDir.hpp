#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMREADDIR_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMREADDIR_HPP

#include <list>
#include <string>

/// Does the work of QBLFmDir::readDir() for an open directory.
/// @param fd  the directory, which this function closes; if it is -1, fails with the current errno
bool qblReadDir(int fd, std::list<std::string>* files, const char* filePattern,
                std::list<std::string>* dirs, const char* dirPattern);

#endif
