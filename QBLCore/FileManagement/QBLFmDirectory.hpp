#ifndef QBLCORE_FILEMANAGEMENT_QBLFMDIRECTORY_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMDIRECTORY_HPP

#include <list>
#include <string>

#include "QBLCore/Frame/QBLExport.h"

/// An open directory. What is below it is reached by name from the directory itself, so that nobody
/// who can rename directories or plant links can lead the caller elsewhere: a program that walks a
/// tree which others can write to opens each level from the one above it.
///
/// A name is one entry of the directory, without "/"; "", "." and ".." are refused with EINVAL. No
/// operation follows a link that has the name: it fails with ELOOP or ENOTDIR.
///
/// Nothing throws; a failure is a false result, or -1, and errno tells why.
///
/// Threads: any number may call the constant operations of one object at a time; the others need it
/// alone.
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

    /// Opens the directory that a path leads to, links included.
    [[nodiscard]] bool open(const char* path);
    /// Opens a directory in another one.
    [[nodiscard]] bool open(const QBLFmDirectory& parent, const char* name);
    /// The same, making it if it is not there.
    /// @param mode  of a new directory, less the umask
    [[nodiscard]] bool create(const QBLFmDirectory& parent, const char* name, unsigned mode);
    /// Opens the directory with the file that a path leads to. Links are followed, except those of
    /// other users in a directory for everybody's files (mode 1777): EACCES.
    /// @param name  receives the file's name in the directory; the file need not be there
    [[nodiscard]] bool openParent(const char* path, std::string& name);
    void close();
    bool isOpen() const { return m_iDescriptor >= 0; }

    /// Opens a file in the directory.
    /// @param flags  as of open(2); O_NOFOLLOW and O_CLOEXEC are added
    /// @param mode  of a new file, less the umask
    /// @return a descriptor, which the caller closes; -1 on failure
    [[nodiscard]] int openFile(const char* name, int flags, unsigned mode = 0) const;
    /// Lists the names in the directory, as QBLFmDir::readDir does: by what a link leads to.
    [[nodiscard]] bool readDir(std::list<std::string>* files, const char* filePattern,
                               std::list<std::string>* dirs, const char* dirPattern) const;
    /// Gives a file another name in the directory, taking the place of what has that.
    [[nodiscard]] bool rename(const char* from, const char* to) const;
    /// Removes a file.
    bool remove(const char* name) const;
    /// For system calls such as fstatat(2), and good for nothing else: the directory is open for
    /// looking names up (O_PATH). -1 while nothing is open.
    int getDescriptor() const { return m_iDescriptor; }

private:
    bool take(int descriptor);

    int m_iDescriptor;
};

#endif
