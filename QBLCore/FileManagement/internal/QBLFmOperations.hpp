#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMOPERATIONS_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMOPERATIONS_HPP

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

#include "QBLCore/FileManagement/QBLFmDescriptor.hpp"
#include "QBLCore/FileManagement/internal/QBLFmPath.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

/// What the two file classes do alike. Calls names the system's calls for their offsets. Errors are
/// saved by the object's own operation, which a derived class may have overridden, as it may have
/// those that are used here.
template <class Calls>
struct QBLFmOperations {
    typedef typename Calls::Count Count;
    typedef typename Calls::Size Size;
    typedef typename Calls::Offset Offset;

    template <class File>
    static Count read(File& self, const QBLFmDescriptor& file, void* buffer, Size size) {
        if (!file.isOpen()) return -1;
        return counted(self, ::read(file.m_iDescriptor, buffer, clamped(size)));
    }

    template <class File>
    static Count write(File& self, const QBLFmDescriptor& file, const void* buffer, Size size) {
        if (!file.isOpen()) return -1;
        return counted(self, ::write(file.m_iDescriptor, buffer, clamped(size)));
    }

    template <class File>
    static Offset seek(File& self, const QBLFmDescriptor& file, Offset offset, int origin) {
        if (!file.isOpen()) return -1;
        const Offset position = Calls::seek(file.m_iDescriptor, offset, origin);
        if (position >= 0) return position;
        if (file.m_iStandard != 0) return 0;
        self.logLastError();
        return -1;
    }

    template <class File>
    static bool append(File& self, const QBLFmDescriptor& file, File& other,
                       const QBLFmDescriptor& source) {
        std::int64_t rest = kAll, from = kAll;
        if (file.isOpen() && source.isOpen() && !findRest(file, source, rest, from))
            return failed(self, errno);
        if (&self != &other) from = kAll;
        if (self.seek(0, File::end) < 0) return false;
        char small[1024];
        Size size = 65536;
        // Of malloc(), because nobody's new-handler need know: a small buffer does as well.
        const std::unique_ptr<char, decltype(&std::free)> large(
            static_cast<char*>(std::malloc(size)), &std::free);
        if (large == nullptr) size = sizeof small;
        return copy(self, other, large != nullptr ? large.get() : small, size, rest, from);
    }

    template <class File>
    static bool open(File& self, QBLFmDescriptor& file, const char* name, int flags, int readOnly) {
        if (file.isOpen() && !self.close()) return false;
        if (name == nullptr) return failed(self, EFAULT);
        if (readOnly == 0) flags = (flags & ~O_ACCMODE) | O_RDWR;
        int fd = Calls::open(name, flags);
        if (fd == 0) fd = awayFromZero(flags);
        if (fd < 0) return failed(self, errno);
        file.m_iDescriptor = fd;
        return true;
    }

    template <class File>
    static bool open(File& self, const I18NString& name, typename File::createmode mode,
                     int readOnly) {
        const char* path = nullptr;
        if (!qblSettle([&] { return (path = qblPlatformPath(name)) != nullptr; }))
            return failed(self, errno);
        return self.open(path, mode, readOnly);
    }

    template <class File>
    static bool openStandard(File& self, QBLFmDescriptor& file, int stream) {
        if (file.isOpen() && !self.close()) return true;
        FILE* const streams[] = {stdin, stdout, stderr};
        if (stream < 0 || stream > 2) return false;
        const int fd = fileno(streams[stream]);
        if (fd < 0) return failed(self, errno);
        file.m_iDescriptor = fd;
        file.m_iStandard = 1;
        return true;
    }

    /// The descriptor is gone even if the system reports an error: to close it again could hit
    /// one that another thread has just opened.
    template <class File>
    static bool close(File& self, QBLFmDescriptor& file) {
        const bool own = file.isOpen() && file.m_iStandard == 0;
        const int fd = file.m_iDescriptor;
        file.m_iDescriptor = file.m_iStandard = 0;
        if (own && ::close(fd) != 0) return failed(self, errno);
        file.m_iLastError = 0;
        return true;
    }

    /// The destructor's way.
    static void closeQuietly(const QBLFmDescriptor& file) {
        if (file.isOpen() && file.m_iStandard == 0) qblCloseQuietly(file.m_iDescriptor);
    }

    template <class File>
    static Offset getLength(File& self, const QBLFmDescriptor& file) {
        if (!file.isOpen()) return Calls::kNoLength;
        QBLFileStatus status;
        const bool known = status.get(file.m_iDescriptor);
        if (known && status.size() <= static_cast<std::uint64_t>(Calls::kLongest))
            return static_cast<Offset>(status.size());
        failed(self, known ? EOVERFLOW : errno);
        return Calls::kNoLength;
    }

    template <class File>
    static bool flush(File& self, const QBLFmDescriptor& file) {
        if (!file.isOpen()) return false;
        if (file.m_iStandard != 0) return true;
        return fsync(file.m_iDescriptor) == 0 || failed(self, errno);
    }

    template <class File>
    static bool truncate(File& self, const QBLFmDescriptor& file, Offset length) {
        if (!file.isOpen() || file.m_iStandard != 0) return false;
        return Calls::truncate(file.m_iDescriptor, length) == 0 || failed(self, errno);
    }

    /// Saves an error. @return false
    template <class File>
    static bool fail(File& self, int error) {
        return failed(self, error);
    }

private:
    static constexpr std::int64_t kAll = INT64_MAX;

    template <class File>
    static bool failed(File& self, int error) {
        errno = error;
        self.logLastError();
        return false;
    }

    template <class File>
    static Count counted(File& self, ssize_t result) {
        if (result < 0) self.logLastError();
        return static_cast<Count>(result);
    }

    /// What the result can express.
    static std::size_t clamped(Size size) {
        const auto most = static_cast<std::size_t>(std::numeric_limits<Count>::max());
        return std::min<std::size_t>(size, most);
    }

    /// Standard input was closed, and the new file got its descriptor.
    static int awayFromZero(int flags) {
        const int fd = fcntl(0, (flags & O_CLOEXEC) != 0 ? F_DUPFD_CLOEXEC : F_DUPFD, 3);
        const QBLKeepErrno keepErrno;
        ::close(0);
        return fd;
    }

    /// Finds out how much of the source to copy: all, but of a file appended to itself what is
    /// there now, because it would never come to its end. In that case, where to copy from too.
    static bool findRest(const QBLFmDescriptor& file, const QBLFmDescriptor& source,
                         std::int64_t& rest, std::int64_t& from) {
        QBLFileStatus a, b;
        if (!a.get(file.m_iDescriptor) || !b.get(source.m_iDescriptor)) return false;
        if (!a.isSameFile(b) || !a.isRegular()) return true;
        from = lseek64(source.m_iDescriptor, 0, SEEK_CUR);
        rest = std::max<std::int64_t>(static_cast<std::int64_t>(a.size()) - from, 0);
        return true;
    }

    /// @param from  where the next part is, for an object that copies from itself and has one
    ///     position for reading and writing; else kAll
    template <class File>
    static bool copy(File& self, File& other, char* buffer, Size size, std::int64_t rest,
                     std::int64_t from) {
        const bool own = from != kAll;
        while (rest != 0) {
            if (own && self.seek(static_cast<Offset>(from), File::begin) < 0) return false;
            const Size wanted = static_cast<Size>(std::min<std::int64_t>(rest, size));
            errno = 0;
            const Count got = other.read(buffer, wanted);
            if (got < 0) return failed(self, errno != 0 ? errno : EBADF);
            if (own && self.seek(0, File::end) < 0) return false;
            if (got == 0) return true;
            errno = 0;
            const Count put = self.write(buffer, static_cast<Size>(got));
            if (put != got) return failed(self, errno != 0 ? errno : ENOSPC);
            if (rest != kAll) rest -= got;
            if (own) from += got;
        }
        return true;
    }
};

#endif
