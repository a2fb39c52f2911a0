#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMSYSTEM_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMSYSTEM_HPP

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

#include "QBLCore/Base/QBLCloseQuietly.hpp"
#include "QBLCore/Base/QBLFileStatus.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"

/// The mode for QBLFmDir::exists() that means a directory that its owner may read and write.
constexpr unsigned short kQblWritableDir = S_IFDIR | S_IRUSR | S_IWUSR;

/// Sets errno. @return false
inline bool qblSetErrno(int error) {
    errno = error;
    return false;
}

/// Runs an operation that returns false and sets errno if it fails. Converts exceptions to such
/// failures. Exceptions occur if memory runs out, if a path is too long for a string, or if the
/// platform's encoding does not have a character of the path.
template <class Body>
bool qblSettle(Body&& body) {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return qblSetErrno(ENOMEM);
    } catch (const std::length_error&) {
        return qblSetErrno(ENAMETOOLONG);
    } catch (const QBLOutOfMemoryError&) {
        return qblSetErrno(ENOMEM);
    } catch (const QBLThrowable&) {
        return qblSetErrno(EILSEQ);
    }
}

inline bool qblIsDots(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

/// Returns true if a text can name one entry of a directory; otherwise false with errno set.
inline bool qblIsEntryName(const char* name) {
    if (name == nullptr) return qblSetErrno(EFAULT);
    const bool isEntry = *name != '\0' && !qblIsDots(name) && std::strchr(name, '/') == nullptr;
    return isEntry || qblSetErrno(EINVAL);
}

/// An open directory. The destructor closes it and does not change errno.
class QBLFmOpenDir {
public:
    QBLFmOpenDir() = default;
    explicit QBLFmOpenDir(int fd) { open(fd); }
    ~QBLFmOpenDir() { close(); }
    QBLFmOpenDir(const QBLFmOpenDir&) = delete;
    QBLFmOpenDir& operator=(const QBLFmOpenDir&) = delete;

    /// Takes ownership of a descriptor. If the descriptor is -1, fails with the current errno.
    /// @return false with errno set on failure
    bool open(int fd) {
        close();
        if (fd < 0) return false;
        m_pStream = fdopendir(fd);
        if (m_pStream != nullptr) return true;
        qblCloseQuietly(fd);
        return false;
    }
    bool isOpen() const { return m_pStream != nullptr; }
    void swap(QBLFmOpenDir& other) { std::swap(m_pStream, other.m_pStream); }
    int descriptor() const { return dirfd(m_pStream); }
    /// Returns the next entry; skips "." and "..".
    /// @return null with errno 0 at the end; null with errno set on failure
    dirent64* next() {
        dirent64* entry;
        do {
            errno = 0;
            entry = readdir64(m_pStream);
        } while (entry != nullptr && qblIsDots(entry->d_name));
        return entry;
    }
    void close() {
        const QBLNoCancel noCancel;
        const QBLKeepErrno keepErrno;
        if (m_pStream != nullptr) closedir(m_pStream);
        m_pStream = nullptr;
    }

private:
    DIR* m_pStream = nullptr;
};

#endif
