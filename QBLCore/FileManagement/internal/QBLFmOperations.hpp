#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMOPERATIONS_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMOPERATIONS_HPP

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include "QBLCore/FileManagement/QBLFmDescriptor.hpp"
#include "QBLCore/FileManagement/internal/QBLFmPath.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

/// The common code of the two file classes. The system calls use 64-bit offsets; an offset that
/// does not fit into the offset type of the class causes the error EOVERFLOW. The code is a
/// template because it calls operations of the object that a derived class may override, such as
/// logLastError().
template <class File>
class QBLFmOperations {
public:
    typedef decltype(std::declval<File&>().read(nullptr, 0)) Count;
    typedef decltype(std::declval<File&>().getLength()) Offset;

    QBLFmOperations(File& self, QBLFmDescriptor& file) : m_self(self), m_file(file) {}

    Count read(void* buffer, std::size_t size) {
        if (!m_file.isOpen()) return -1;
        return counted(::read(m_file.m_iDescriptor, buffer, std::min(size, kMost)));
    }

    Count write(const void* buffer, std::size_t size) {
        if (!m_file.isOpen()) return -1;
        return counted(::write(m_file.m_iDescriptor, buffer, std::min(size, kMost)));
    }

    /// Fails with EOVERFLOW if the new position does not fit into the result. The position of the
    /// file has changed nevertheless.
    Offset seek(Offset offset, int origin) {
        if (!m_file.isOpen()) return -1;
        const std::int64_t position = lseek64(m_file.m_iDescriptor, offset, origin);
        if (position > kLongest) errno = EOVERFLOW;
        if (position >= 0 && position <= kLongest) return static_cast<Offset>(position);
        if (m_file.m_iStandard != 0) return 0;
        m_self.logLastError();
        return -1;
    }

    bool append(File& other, const QBLFmDescriptor& source) {
        std::int64_t rest = kAll, from = kAll;
        if (m_file.isOpen() && source.isOpen() && !findRest(source, rest, from))
            return rememberError(errno);
        if (&m_self != &other) from = kAll;
        if (m_self.seek(0, File::end) < 0) return false;
        char small[1024];
        unsigned size = 65536;
        // Uses malloc(), which calls no new-handler: if memory runs out, the small buffer also
        // works.
        const std::unique_ptr<char, decltype(&std::free)> large(
            static_cast<char*>(std::malloc(size)), &std::free);
        if (large == nullptr) size = sizeof small;
        return copy(other, large != nullptr ? large.get() : small, size, rest, from);
    }

    bool open(const char* name, int flags, int readOnly) {
        if (m_file.isOpen() && !m_self.close()) return false;
        if (name == nullptr) return rememberError(EFAULT);
        if (readOnly == 0) flags = (flags & ~O_ACCMODE) | O_RDWR;
        int fd = openAny(name, flags);
        if (fd == 0) fd = awayFromZero(flags);
        if (fd < 0) return rememberError(errno);
        m_file.m_iDescriptor = fd;
        return true;
    }

    bool open(const I18NString& name, typename File::createmode mode, int readOnly) {
        const char* path = nullptr;
        if (!qblSettle([&] { return (path = qblPlatformPath(name)) != nullptr; }))
            return rememberError(errno);
        return m_self.open(path, mode, readOnly);
    }

    bool openStandard(int stream) {
        if (m_file.isOpen() && !m_self.close()) return true;
        FILE* const streams[] = {stdin, stdout, stderr};
        if (stream < 0 || stream > 2) return false;
        const int fd = fileno(streams[stream]);
        if (fd < 0) return rememberError(errno);
        m_file.m_iDescriptor = fd;
        m_file.m_iStandard = 1;
        return true;
    }

    /// Releases the descriptor even if the system reports an error: a second close could close a
    /// file that another thread has just opened.
    bool close() {
        const bool own = m_file.isOpen() && m_file.m_iStandard == 0;
        const int fd = m_file.m_iDescriptor;
        m_file.m_iDescriptor = m_file.m_iStandard = 0;
        if (own && qblClose(fd) != 0) return rememberError(errno);
        m_file.m_iLastError = 0;
        return true;
    }

    /// Closes the file for the destructor, which ignores errors.
    void closeQuietly() {
        if (m_file.isOpen() && m_file.m_iStandard == 0) qblCloseQuietly(m_file.m_iDescriptor);
    }

    /// @return -1 if nothing is open, the length is unknown, or it does not fit into the result
    Offset getLength() {
        if (!m_file.isOpen()) return -1;
        QBLFileStatus status;
        const bool known = status.get(m_file.m_iDescriptor);
        if (known && status.size() <= static_cast<std::uint64_t>(kLongest))
            return static_cast<Offset>(status.size());
        rememberError(known ? EOVERFLOW : errno);
        return -1;
    }

    bool flush() {
        if (!m_file.isOpen()) return false;
        if (m_file.m_iStandard != 0) return true;
        return fsync(m_file.m_iDescriptor) == 0 || rememberError(errno);
    }

    bool truncate(Offset length) {
        if (!m_file.isOpen() || m_file.m_iStandard != 0) return false;
        return ftruncate64(m_file.m_iDescriptor, length) == 0 || rememberError(errno);
    }

    /// Sets errno and the object's last error. @return false
    bool rememberError(int error) {
        errno = error;
        m_self.logLastError();
        return false;
    }

private:
    static constexpr std::int64_t kAll = INT64_MAX;
    static constexpr std::int64_t kLongest = std::numeric_limits<Offset>::max();
    static constexpr std::size_t kMost = std::numeric_limits<Count>::max();

    /// Opens a file. With 32-bit offsets, the system refuses a file that is too long for these
    /// offsets.
    static int openAny(const char* name, int flags) {
        if constexpr (kLongest == INT64_MAX)
            return ::open64(name, flags, 0666);
        else
            return ::open(name, flags, 0666);
    }

    Count counted(ssize_t result) {
        if (result < 0) m_self.logLastError();
        return static_cast<Count>(result);
    }

    /// Moves a new file from descriptor 0 to another descriptor. A new file gets descriptor 0 if
    /// standard input is closed.
    static int awayFromZero(int flags) {
        const int fd = fcntl(0, (flags & O_CLOEXEC) != 0 ? F_DUPFD_CLOEXEC : F_DUPFD, 3);
        qblCloseQuietly(0);
        return fd;
    }

    /// If a file is appended to itself, limits the copy to the bytes that exist now, because
    /// otherwise the copy would never reach the end.
    /// @param rest  receives the number of bytes to copy in this case; otherwise unchanged
    /// @param from  receives the position to copy from in this case; otherwise unchanged
    bool findRest(const QBLFmDescriptor& source, std::int64_t& rest, std::int64_t& from) {
        QBLFileStatus a, b;
        if (!a.get(m_file.m_iDescriptor) || !b.get(source.m_iDescriptor)) return false;
        if (!a.isSameFile(b) || !a.isRegular()) return true;
        from = lseek64(source.m_iDescriptor, 0, SEEK_CUR);
        rest = std::max<std::int64_t>(static_cast<std::int64_t>(a.size()) - from, 0);
        return true;
    }

    /// @param from  the position of the next part if the object copies from itself, because it has
    ///     only one position for reading and writing; otherwise kAll
    bool copy(File& other, char* buffer, unsigned size, std::int64_t rest, std::int64_t from) {
        const bool own = from != kAll;
        while (rest != 0) {
            if (own && m_self.seek(static_cast<Offset>(from), File::begin) < 0) return false;
            errno = 0;
            const auto wanted = static_cast<unsigned>(std::min<std::int64_t>(rest, size));
            const Count got = other.read(buffer, wanted);
            if (got < 0) return rememberError(errno != 0 ? errno : EBADF);
            if (own && m_self.seek(0, File::end) < 0) return false;
            if (got == 0) return true;
            errno = 0;
            const Count put = m_self.write(buffer, static_cast<unsigned>(got));
            if (put != got) return rememberError(errno != 0 ? errno : ENOSPC);
            if (rest != kAll) rest -= got;
            if (own) from += got;
        }
        return true;
    }

    File& m_self;
    QBLFmDescriptor& m_file;
};

#endif
