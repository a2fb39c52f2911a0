#ifndef QBLCORE_FILEMANAGEMENT_QBLFMDIRECTORY_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMDIRECTORY_HPP

#include <list>
#include <string>

#include "QBLCore/FileManagement/QBLFmPathText.hpp"
#include "QBLCore/Frame/QBLExport.h"

/// An open directory. Names are looked up in the open directory itself. Other users therefore
/// cannot redirect the caller by renaming directories or planting links. To walk a tree that other
/// users can write to, open each level from the level above it.
///
/// A name is one entry of the directory, without "/"; "", "." and ".." fail with EINVAL. No
/// operation follows a symbolic link that has the name: opening such a link fails with ELOOP or
/// ENOTDIR.
///
/// No operation throws. A failed operation returns false or -1 and sets errno.
///
/// Threads: several threads at a time may call the constant operations of one object; the other
/// operations need exclusive access to the object.
///
///     QBLFmDirectory tree, level;
///     if (tree.open("/srv/drop") && level.open(tree, "today")) list(level);
class QBL_API QBLFmDirectory {
public:
    QBLFmDirectory() : m_iDescriptor(-1) {}
    ~QBLFmDirectory() { close(); }
    QBLFmDirectory(QBLFmDirectory&& other) noexcept : m_iDescriptor(other.m_iDescriptor) {
        other.m_iDescriptor = -1;
    }
    QBLFmDirectory& operator=(QBLFmDirectory&& other) noexcept {
        if (this == &other) return *this;
        close();
        m_iDescriptor = other.m_iDescriptor;
        other.m_iDescriptor = -1;
        return *this;
    }
    QBLFmDirectory(const QBLFmDirectory&) = delete;
    QBLFmDirectory& operator=(const QBLFmDirectory&) = delete;

    /// Opens the directory at a path; follows links.
    [[nodiscard]] bool open(const char* path);
    /// For std::filesystem::path. A path with a NUL fails with EFAULT.
    template <class Path>
    [[nodiscard]] auto open(const Path& path) -> decltype(qblPathText(path), bool()) {
        return open(qblPathText(path));
    }
    /// Opens a directory inside another one.
    [[nodiscard]] bool open(const QBLFmDirectory& parent, const char* name);
    /// Opens a directory inside another one, and creates it if it does not exist.
    /// @param mode  the mode of a new directory, minus the umask
    [[nodiscard]] bool create(const QBLFmDirectory& parent, const char* name, unsigned mode);
    /// Opens the directory that contains the file at a path. Follows links. In a directory such as
    /// /tmp (mode 1777), fails with EACCES for a link of another user who does not own the
    /// directory.
    /// @param name  receives the file's name in the directory; the file need not exist
    [[nodiscard]] bool openParent(const char* path, std::string& name);
    void close();
    bool isOpen() const { return m_iDescriptor >= 0; }

    /// Opens a file in the directory.
    /// @param flags  as for open(2); O_NOFOLLOW and O_CLOEXEC are added
    /// @param mode  the mode of a new file, minus the umask
    /// @return a descriptor, which the caller closes; -1 on failure
    [[nodiscard]] int openFile(const char* name, int flags, unsigned mode = 0) const;
    /// Lists the names in the directory as QBLFmDir::readDir() does; a link counts as its target.
    [[nodiscard]] bool readDir(std::list<std::string>* files, const char* filePattern,
                               std::list<std::string>* dirs, const char* dirPattern) const;
    /// Renames a file within the directory; replaces a file that has the new name.
    [[nodiscard]] bool rename(const char* from, const char* to) const;
    /// Removes a file.
    bool remove(const char* name) const;
    /// Returns the descriptor, for system calls such as fstatat(2); -1 if nothing is open. The
    /// descriptor only serves to look up names (O_PATH).
    int getDescriptor() const { return m_iDescriptor; }

private:
    bool take(int descriptor);

    int m_iDescriptor;
};

#endif
