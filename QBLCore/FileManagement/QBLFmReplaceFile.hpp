#ifndef QBLCORE_FILEMANAGEMENT_QBLFMREPLACEFILE_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMREPLACEFILE_HPP

#include <string>

#include "QBLCore/FileManagement/QBLFmPathText.hpp"
#include "QBLCore/Frame/QBLExport.h"

class QBLFmDirectory;

/// Writes a new version of a file next to the old one and replaces the old version in one step. A
/// program that opens the file sees the complete old or the complete new version, even after a
/// crash. A crash may leave the unfinished version under a name that begins with ".QBLFm". After
/// commitOver(), it may leave the old version under such a name.
///
/// - The new version gets the mode, the access control list and the extended attributes of the old
///   version, except capabilities and signatures of the content. Before the commit, only the owner
///   can read it. If there is no old version, open() creates the new version with the mode 0666
///   minus the umask, so other users may read it before the commit.
/// - The new version gets the owner and the group of the old version if the caller may set them. If
///   the owner or the group differs, the new version loses the corresponding set-id bit. A
///   different group gets no more rights than other users have. If the access control list cannot
///   be copied, the group gets the rights that the list gives to the file's group. If the list
///   cannot be read, for example without /proc, the group gets no more rights than other users
///   have.
/// - A file that the caller may not write is not replaced.
/// - If the path is a symbolic link, its target is replaced and the link stays. A dangling link is
///   refused. In a directory such as /tmp (mode 1777), each link on the path must belong to the
///   caller or to the directory's owner; other links are refused with EACCES.
/// - Other hard links, and programs that have the file open, keep the old version.
/// - Two replacements at the same time do not mix; the later commit() wins.
///
/// No operation throws. A failed operation returns false, and getLastErrorNumber() tells why.
///
/// Threads: one thread at a time for each object.
///
///     QBLFmReplaceFile file;
///     bool ok = file.open(path) && file.write(text, size) && file.commit();
class QBL_API QBLFmReplaceFile {
public:
    /// @name Making an object
    /// @{

    QBLFmReplaceFile();
    /// Discards a new version that was not committed.
    ~QBLFmReplaceFile();
    QBLFmReplaceFile(const QBLFmReplaceFile&) = delete;
    QBLFmReplaceFile& operator=(const QBLFmReplaceFile&) = delete;
    /// @}

    /// @name A new version
    /// @{

    /// Discards the unfinished version if there is one, and begins a new, empty version. The file
    /// need not exist; its directory must exist and allow new files.
    [[nodiscard]] bool open(const char* path);
    /// For std::filesystem::path. A path with a NUL fails with EFAULT.
    template <class Path>
    [[nodiscard]] auto open(const Path& path) -> decltype(qblPathText(path), bool()) {
        return open(qblPathText(path));
    }
    /// Does the same for a file in an open directory. Other users cannot redirect this call.
    /// Refuses a symbolic link with EINVAL.
    [[nodiscard]] bool open(const QBLFmDirectory& directory, const char* name);
    /// Appends to the new version.
    /// @return false unless all bytes were written; after a failure, the version can only be
    ///     discarded
    [[nodiscard]] bool write(const void* data, unsigned long size);
    /// Waits until the new version is on the disk and gives it the file's name. Then closes the
    /// object, even after a failure.
    /// @return false if the commit failed and the old version stays. Also returns false if the file
    ///     was replaced, but the system cannot guarantee that the new name survives a power
    ///     failure. isCommitted() distinguishes the two cases.
    [[nodiscard]] bool commit();
    /// Waits until the bytes written so far are on the disk. This shortens a later commit(), and
    /// therefore the time between the caller's last check of the old version and its replacement.
    [[nodiscard]] bool flush();
    /// @}

    /// @name Replacing one particular file
    /// @{

    /// Works as commit(), but replaces only one particular file. Fails if another file has taken
    /// the name in the meantime. If the file system can exchange two names, the old version always
    /// has a name: it stays in the directory, under a temporary name, until the object is destroyed
    /// or used again. The caller can therefore still check whether somebody has written to the old
    /// version, and keep it with keepReplaced(). If the file system cannot exchange two names, a
    /// file that takes the name between the last check and the rename is lost.
    /// @param old  a descriptor of the file to replace
    /// @return false with ESTALE if another file has the name; otherwise as commit()
    [[nodiscard]] bool commitOver(int old);
    /// After commitOver(): gives the replaced version this name in the directory of the file.
    /// @return false with EEXIST if the name is in use, or with ENOENT if the replaced version no
    ///     longer has a name
    [[nodiscard]] bool keepReplaced(const char* name);
    /// @}

    /// @name State
    /// @{

    /// Returns true if the last version has replaced the file.
    bool isCommitted() const;
    /// Removes the new version if there is one.
    void discard();
    bool isOpen() const;
    /// @}

    /// @name Errors
    /// @{

    int getLastErrorNumber() const;
    const char* getLastErrorMessage();
    /// @}

private:
    template <class Locate>
    bool begin(Locate&& locate);
    bool failed(int error);
    bool locate(const char* path);
    bool settle();
    bool put(bool (QBLFmReplaceFile::*rename)(int), int old);
    bool renameNew(int);
    bool exchange(int old);
    bool linkAndRename(int old);
    bool hasName(const char* name, int file);
    bool create();
    bool keepOwnerAndMode(unsigned mode, unsigned user, unsigned group);

    int m_iDirectory;  // -1 if nothing is open
    int m_iFile;       // -1 if nothing is open
    std::string m_name;
    std::string m_temporary;  // a name in the directory; may be empty
    int m_iLastError;
    bool m_bBroken;  // a write failed
    bool m_bCommitted;
    char m_message[64];      // for error numbers without a fixed text
    unsigned short m_uMode;  // mode of the new version after the commit
};

#endif
