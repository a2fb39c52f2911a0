#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMATTRIBUTES_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMATTRIBUTES_HPP

/// Copies the access control list and the extended attributes of an old file to the new file that
/// will replace it, except attributes that vouch for the content. Removes the list that the new
/// file has from its directory. Skips attributes that cannot be read, or that the new file cannot
/// have.
/// @param from  the old file; may be an O_PATH descriptor if /proc is mounted
/// @param mode  the old file's mode. If the list cannot be copied, the group keeps only the bits
///     that the list gives to the file's group. If the list cannot be read, the group keeps only
///     the bits that all others have too.
/// @param strangeGroup  true if the new file has another group, which gets no more rights than all
///     others have
/// @return false with errno set
/// @throws std::bad_alloc
bool qblCopyAttributes(int from, int to, unsigned& mode, bool strangeGroup);

#endif
