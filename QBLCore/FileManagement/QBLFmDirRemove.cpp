#include <string>
#include <vector>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

namespace {

constexpr int kOpenFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// Empties a directory. At any depth of the tree, only the current directory is open. Names are
/// looked up in the open directory, not by path, so that another user cannot redirect the removal
/// by planting a link. The removal returns to the parent through "..", but only if ".." is the
/// directory from which the removal came.
class TreeRemoval {
public:
    /// @param fd  the directory to empty; the destructor closes it
    explicit TreeRemoval(int fd) : m_iFd(fd) {}
    ~TreeRemoval() { qblCloseQuietly(m_iFd); }
    TreeRemoval(const TreeRemoval&) = delete;
    TreeRemoval& operator=(const TreeRemoval&) = delete;

    /// @return false with the errno of the first failure
    bool run() {
        bool onTrack = enter(std::string());
        while (onTrack) {
            std::vector<std::string>& subdirs = m_levels.back().subdirs;
            if (!subdirs.empty()) {
                std::string name = std::move(subdirs.back());
                subdirs.pop_back();
                onTrack = descend(std::move(name));
            } else if (m_levels.size() > 1) {
                onTrack = ascend();
            } else {
                break;
            }
        }
        return m_iError == 0 || qblSetErrno(m_iError);
    }

private:
    struct Level {
        std::string name;  // name in the directory above
        QBLFileStatus identity;
        std::vector<std::string> subdirs;  // still to be removed
    };

    /// Stores errno if this is the first failure. @return `done`
    bool note(bool done) {
        if (!done && m_iError == 0) m_iError = errno;
        return done;
    }

    /// Makes the open directory the last level and removes all its files.
    bool enter(std::string name) {
        m_levels.push_back({std::move(name), {}, {}});
        if (!note(m_levels.back().identity.get(m_iFd))) return false;
        std::vector<std::string> files;
        QBLFmOpenDir list(fcntl(m_iFd, F_DUPFD_CLOEXEC, 0));
        if (!note(list.isOpen())) return true;
        std::vector<std::string>& subdirs = m_levels.back().subdirs;
        while (const dirent64* entry = list.next())
            (isDirectory(*entry) ? subdirs : files).emplace_back(entry->d_name);
        note(errno == 0);
        for (std::string& file : files) {
            if (unlinkat(m_iFd, file.c_str(), 0) == 0) continue;
            if (errno == EISDIR)
                subdirs.push_back(std::move(file));
            else
                note(false);
        }
        return true;
    }

    /// @return false also if the type cannot be determined: the attempt to remove the entry as a
    ///     file then fails with EISDIR if it is a directory
    bool isDirectory(const dirent64& entry) const {
        if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
        QBLFileStatus status;
        return status.get(m_iFd, entry.d_name, AT_SYMLINK_NOFOLLOW) && status.isDirectory();
    }

    bool descend(std::string name) {
        const int fd = openat64(m_iFd, name.c_str(), kOpenFlags);
        QBLFileStatus above;
        if (fd >= 0 && above.get(fd, "..", 0)) {
            qblCloseQuietly(m_iFd);
            m_iFd = fd;
            return enter(std::move(name));
        }
        // A directory that cannot be read or searched can still be removed if it is empty.
        const int error = errno;
        if (fd >= 0) qblCloseQuietly(fd);
        if (unlinkat(m_iFd, name.c_str(), AT_REMOVEDIR) != 0) note(qblSetErrno(error));
        return true;
    }

    bool ascend() {
        const Level& above = m_levels[m_levels.size() - 2];
        const int fd = openat64(m_iFd, "..", kOpenFlags);
        if (!note(fd >= 0)) return false;
        qblCloseQuietly(m_iFd);
        m_iFd = fd;
        QBLFileStatus status;
        if (!note(status.get(fd))) return false;
        if (!status.isSameFile(above.identity)) return note(qblSetErrno(ESTALE));
        note(unlinkat(m_iFd, m_levels.back().name.c_str(), AT_REMOVEDIR) == 0);
        m_levels.pop_back();
        return true;
    }

    int m_iFd;
    std::vector<Level> m_levels;
    int m_iError = 0;
};

// Two independent guards refuse a root, "." and "..": if a mistake disables one guard, the other
// one still prevents the loss of a whole disk. The first guard checks the text of the path before
// anything is opened.
bool isPlainName(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const char* const name = path.c_str() + (slash != std::string::npos ? slash + 1 : 0);
    if (*name == '\0') return qblSetErrno(path.empty() ? ENOENT : EBUSY);
    return !qblIsDots(name) || qblSetErrno(EINVAL);
}

/// Removes the last name from a path that does not end with "/".
std::string parentOf(std::string path) {
    path.resize(path.find_last_of('/') + 1);
    return path.empty() ? "." : path;
}

// The second guard checks the open directory in the file system. Its ".." must be the directory
// that the path names if its last part is removed. This is true for an ordinary directory. It is
// false for a path that ends with "." or "..". A root is refused because its ".." is the root
// itself.
bool isWherePathSays(const std::string& path, int fd) {
    QBLFileStatus self, above, parent;
    if (!self.get(fd) || !above.get(fd, "..", 0) || !parent.get(parentOf(path).c_str()))
        return false;
    if (above.isSameFile(self)) return qblSetErrno(EBUSY);
    return above.isSameFile(parent) || qblSetErrno(EINVAL);
}

bool removeTree(std::string dir) {
    while (dir.size() > 1 && dir.back() == '/') dir.pop_back();  // "/" would follow a link
    if (!isPlainName(dir)) return false;
    const int fd = open64(dir.c_str(), kOpenFlags);
    bool isClosed = fd < 0;
    if (fd >= 0) {
        TreeRemoval tree(fd);
        isClosed = !isWherePathSays(dir, fd);
        if (!isClosed && !tree.run()) return false;
    }
    if (isClosed && errno != EACCES) return false;
    // A directory that cannot be read or searched can still be removed if it is empty.
    return rmdir(dir.c_str()) == 0 || (isClosed && qblSetErrno(EACCES));
}

}  // namespace

bool QBLFmDir::removeDir(const char* path) {
    return path != nullptr ? qblSettle([path] { return removeTree(path); }) : qblSetErrno(EFAULT);
}
