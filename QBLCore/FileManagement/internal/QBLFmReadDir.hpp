#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMREADDIR_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMREADDIR_HPP

#include <list>
#include <string>

/// QBLFmDir::readDir of an open directory.
/// @param fd  is taken over; of -1, errno is passed on
bool qblReadDir(int fd, std::list<std::string>* files, const char* filePattern,
                std::list<std::string>* dirs, const char* dirPattern);

#endif
