#include "QBLCore/FileManagement/internal/QBLFmResolve.hpp"

#include <climits>
#include <utility>

#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

namespace {

constexpr int kMostLinks = 40;  // as in the kernel
constexpr int kOpenFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// Walks a path name by name. Looks up each name in the open directory, so that it follows exactly
/// the links that it has checked.
class PathWalk {
public:
    explicit PathWalk(const char* path) : m_rest(path) {}
    ~PathWalk() { enter(-1); }
    PathWalk(const PathWalk&) = delete;
    PathWalk& operator=(const PathWalk&) = delete;

    bool run(std::string& name) {
        if (!begin()) return false;
        for (;;) {
            const std::string next = takeName();
            const bool last = m_rest.find_first_not_of('/', m_iNext) == std::string::npos;
            if (last && (next.empty() || qblIsDots(next.c_str()))) return qblSetErrno(EISDIR);
            QBLFileStatus status;
            const bool there = status.get(m_iFd, next.c_str(), AT_SYMLINK_NOFOLLOW);
            if (!there && (errno != ENOENT || !last)) return false;
            if (there && status.isLink()) {
                m_bByLink = m_bByLink || last;
                if (!follow(next, status)) return false;
            } else if (!last) {
                if (!enter(openat64(m_iFd, next.c_str(), kOpenFlags))) return false;
            } else if (m_iNext != m_rest.size()) {
                return qblSetErrno(there && !status.isDirectory() ? ENOTDIR : EISDIR);
            } else {
                if (!there && m_bByLink) return qblSetErrno(ENOENT);
                name = next;
                return true;
            }
        }
    }
    /// Returns the directory that the walk has reached; the caller owns it.
    int release() { return std::exchange(m_iFd, -1); }

private:
    bool enter(int fd) {
        if (m_iFd >= 0) qblCloseQuietly(m_iFd);
        m_iFd = fd;
        return fd >= 0;
    }
    bool begin() {
        const bool absolute = m_iNext != m_rest.size() && m_rest[m_iNext] == '/';
        if (!absolute && m_iFd >= 0) return true;  // a relative link starts in its own directory
        return enter(open64(absolute ? "/" : ".", kOpenFlags));
    }
    std::string takeName() {
        const std::size_t from = std::min(m_rest.find_first_not_of('/', m_iNext), m_rest.size());
        m_iNext = std::min(m_rest.find('/', from), m_rest.size());
        return m_rest.substr(from, m_iNext - from);
    }
    bool follow(const std::string& name, const QBLFileStatus& link) {
        if (++m_iLinks > kMostLinks) return qblSetErrno(ELOOP);
        QBLFileStatus dir;
        if (!dir.get(m_iFd)) return false;
        const bool anybodys = (dir.mode() & (S_ISVTX | S_IWOTH)) == (S_ISVTX | S_IWOTH);
        if (anybodys && link.user() != geteuid() && link.user() != dir.user())
            return qblSetErrno(EACCES);
        char text[PATH_MAX];
        const ssize_t length = readlinkat(m_iFd, name.c_str(), text, sizeof text);
        if (length <= 0) return length < 0 ? false : qblSetErrno(ENOENT);
        m_rest.replace(0, m_iNext, text, static_cast<std::size_t>(length));
        m_iNext = 0;
        return begin();
    }

    // The part of the path still to walk, from m_iNext; begins with "/" or a name.
    std::string m_rest;
    std::size_t m_iNext = 0;
    int m_iFd = -1;
    int m_iLinks = 0;
    bool m_bByLink = false;  // the last name of the path is a link
};

}  // namespace

int qblOpenParent(const char* path, std::string& name) {
    PathWalk walk(path);
    return walk.run(name) ? walk.release() : -1;
}
