#ifndef QBLCORE_FILEMANAGEMENT_QBLFMREPLACEFILE_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMREPLACEFILE_HPP

#include <string>

#include "QBLCore/Frame/QBLExport.h"

class QBLFmDirectory;

/// Writes a new version of a file beside it and puts it in its place in one step. Whoever opens the
/// file sees the old version or the new one, whole; so it is after a crash at any moment, which may
/// only leave the unfinished version behind, under a name that begins with ".QBLFm".
///
/// - The new version has the mode of the old one, its access control list and its extended
///   attributes except capabilities and signatures of the content. Without an old one its mode is
///   0666 less the umask. If there is an old one, only the owner can read it until the commit.
/// - It has the old one's owner and group as far as the caller may give them. Where not, bits that
///   would run it as its owner or group are taken off, and a group of its own may do no more than
///   everybody. A list that cannot be kept leaves the group what it gave the group itself;
///   where /proc is not mounted none can be seen, and the group may do no more than everybody.
/// - An old version that the caller may not write is not replaced.
/// - A symbolic link stays, and what it leads to is replaced; one that leads nowhere is refused. In
///   a directory for everybody's files (mode 1777) a link on the way must belong to the caller or
///   to the directory's owner, else it is refused with EACCES.
/// - Other names of the file (hard links) keep the old version, as do programs that have it open.
/// - Two replacements at a time do not mix; the later commit() is the one that stays.
///
/// Nothing throws; a failure is a false result, and getLastErrorNumber() tells why.
///
/// Threads: one at a time for each object.
///
///     QBLFmReplaceFile file;
///     bool ok = file.open(path) && file.write(text, size) && file.commit();
class QBL_API QBLFmReplaceFile {
public:
    /// @name Making an object
    /// @{

    QBLFmReplaceFile();
    /// Discards a version that was not committed.
    ~QBLFmReplaceFile();
    QBLFmReplaceFile(const QBLFmReplaceFile&) = delete;
    QBLFmReplaceFile& operator=(const QBLFmReplaceFile&) = delete;
    /// @}

    /// @name A new version
    /// @{

    /// Begins a new, empty version, discarding one that was begun. The file need not be there; its
    /// directory must, and must allow new files.
    [[nodiscard]] bool open(const char* path);
    /// The same for a file in an open directory, which nobody can lead elsewhere; a link that has
    /// the name is refused with EINVAL.
    [[nodiscard]] bool open(const QBLFmDirectory& directory, const char* name);
    /// Appends to the new version.
    /// @return false unless all was written; the version is then good for discard() only.
    [[nodiscard]] bool write(const void* data, unsigned long size);
    /// Waits until the new version is on the disk and gives it the file's name. The object is
    /// closed then, whatever came of it.
    /// @return false when that failed and the old version stays; also when all was done but the
    ///     system could not say whether the new name would survive a loss of power. isCommitted()
    ///     tells the two apart.
    [[nodiscard]] bool commit();
    /// Waits until what was written so far is on the disk. commit() then takes less time between a
    /// last look at the old version and its replacement.
    [[nodiscard]] bool flush();
    /// @}

    /// @name In the place of one file only
    /// @{

    /// commit(), but in the place of one file and of no other: whoever has given its name to
    /// another file in the meantime is not overwritten. Where the file system can exchange two
    /// names, the old version has one all the time, and it stays in the directory until the object
    /// is destroyed or used again: the caller can still look whether somebody has written to it,
    /// and keep it.
    /// @param old  a descriptor of the file that is to be replaced
    /// @return false, with ESTALE, if another file has the name; else as commit()
    [[nodiscard]] bool commitOver(int old);
    /// After commitOver(): gives the replaced version a name in the directory of the file.
    /// @return false, with EEXIST, if something has that name; with ENOENT if the replaced version
    ///     has no name any more
    [[nodiscard]] bool keepReplaced(const char* name);
    /// @}

    /// @name State
    /// @{

    /// Whether the last version begun has taken the file's place.
    bool isCommitted() const;
    /// Removes the new version; nothing if there is none.
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

    int m_iDirectory;  // -1 when nothing is open
    int m_iFile;       // -1 when nothing is open
    std::string m_name;
    std::string m_temporary;  // both in the directory; empty when there is none
    int m_iLastError;
    bool m_bBroken;  // by a failed write
    bool m_bCommitted;
    char m_message[64];      // for errors that the system has no fixed text for
    unsigned short m_uMode;  // of the new version once it is committed
};

#endif
