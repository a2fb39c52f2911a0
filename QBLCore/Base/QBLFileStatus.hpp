#ifndef QBLCORE_BASE_QBLFILESTATUS_HPP
#define QBLCORE_BASE_QBLFILESTATUS_HPP

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdint>

/// The status of a file, from statx(2). In a 32-bit program, older system calls such as stat(2)
/// fail for every file that has a time after 2038.
class QBLFileStatus {
public:
    /// @param flags  as for fstatat(2)
    /// @return false with errno set
    bool get(int directory, const char* path, int flags) {
        return statx(directory, path, flags, STATX_BASIC_STATS, &m_status) == 0;
    }
    bool get(const char* path) { return get(AT_FDCWD, path, 0); }
    bool get(int fd) { return get(fd, "", AT_EMPTY_PATH); }

    unsigned mode() const { return m_status.stx_mode; }
    bool isDirectory() const { return S_ISDIR(m_status.stx_mode); }
    bool isLink() const { return S_ISLNK(m_status.stx_mode); }
    bool isRegular() const { return S_ISREG(m_status.stx_mode); }
    std::uint64_t size() const { return m_status.stx_size; }
    unsigned links() const { return m_status.stx_nlink; }
    unsigned user() const { return m_status.stx_uid; }
    unsigned group() const { return m_status.stx_gid; }
    std::uint64_t inode() const { return m_status.stx_ino; }
    unsigned major() const { return m_status.stx_dev_major; }
    unsigned minor() const { return m_status.stx_dev_minor; }
    std::int64_t modifiedSeconds() const { return m_status.stx_mtime.tv_sec; }
    unsigned modifiedNanoseconds() const { return m_status.stx_mtime.tv_nsec; }
    bool isSameFile(const QBLFileStatus& other) const {
        return m_status.stx_ino == other.m_status.stx_ino &&
               m_status.stx_dev_major == other.m_status.stx_dev_major &&
               m_status.stx_dev_minor == other.m_status.stx_dev_minor;
    }
    std::int64_t changedSeconds() const { return m_status.stx_ctime.tv_sec; }
    unsigned changedNanoseconds() const { return m_status.stx_ctime.tv_nsec; }
    /// Returns true if both are the same file, and its times and size show no change of its
    /// contents.
    bool isSameVersion(const QBLFileStatus& other) const {
        return isSameFile(other) && size() == other.size() &&
               modifiedSeconds() == other.modifiedSeconds() &&
               modifiedNanoseconds() == other.modifiedNanoseconds() &&
               changedSeconds() == other.changedSeconds() &&
               changedNanoseconds() == other.changedNanoseconds();
    }

private:
    struct statx m_status;
};

#endif
