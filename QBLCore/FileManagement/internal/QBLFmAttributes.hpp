#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMATTRIBUTES_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMATTRIBUTES_HPP

/// Gives a new file the access control list and the extended attributes of the file that it will
/// replace, except attributes that vouch for the content. A list that the new file has from its
/// directory is removed. What cannot be read or is not supported there is left out.
/// @param from  may be a descriptor for looks only (O_PATH), if /proc is mounted
/// @param mode  the old file's mode; if it has a list that could not be copied, then of the group's
///     bits only those stay that the list has for the group itself
/// @param strangeGroup  the new file has another group, which may do no more than everybody
/// @return false with errno set
/// @throws std::bad_alloc
bool qblCopyAttributes(int from, int to, unsigned& mode, bool strangeGroup);

#endif
