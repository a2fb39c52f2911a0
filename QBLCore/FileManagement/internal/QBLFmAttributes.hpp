#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMATTRIBUTES_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMATTRIBUTES_HPP

/// Copies the access control list and the extended attributes of an old file to the new file that
/// will replace it, except capabilities and signatures of the content. Removes the access control
/// list that the new file has inherited from its directory. Skips attributes that the process may
/// not read, or that the new file cannot have.
/// @param from  the old file; may be an O_PATH descriptor if /proc is mounted
/// @param mode  the old file's mode. If the list cannot be copied, the group keeps only the bits
///     that the list gives to the file's group. If the list cannot be read, the group keeps only
///     the bits that other users also have.
/// @param strangeGroup  true if the new file has another group; this group gets no more rights than
///     other users have
/// @return false with errno set
/// @throws std::bad_alloc
bool qblCopyAttributes(int from, int to, unsigned& mode, bool strangeGroup);

#endif
