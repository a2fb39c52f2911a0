#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMATTRIBUTES_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMATTRIBUTES_HPP

/// Gives a new file the extended attributes of the one that it will replace, but for those that
/// vouch for what is in it, and its access control list; a list that the new file has from its
/// directory is taken away. What may not be read or is not known there is left out.
/// @param from  may be a descriptor for looks only (O_PATH), if /proc is mounted
/// @param mode  the old file's mode; if it has a list that could not be copied, then of the group's
///     bits only those stay that the list has for the group itself
/// @param strangeGroup  the new file has another group, which may do no more than everybody
/// @return false with errno set
/// @throws std::bad_alloc
bool qblCopyAttributes(int from, int to, unsigned& mode, bool strangeGroup);

#endif
