#ifndef QBLCORE_FILEMANAGEMENT_QBLFMENTRY_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMENTRY_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "QBLCore/Frame/QBLLanguage.hpp"

/// An entry that QBLFmEntries found in a directory. The values describe the entry itself: a
/// symbolic link is not followed.
///
/// Threads: reading: any; changing: one.
class QBLFmEntry {
public:
    enum Type {
        kUnknown,
        kFile,  ///< a regular file; FIFOs, sockets and devices have their own types
        kDirectory,
        kLink,
        kFifo,
        kSocket,
        kBlockDevice,
        kCharacterDevice
    };

    /// Returns the path that the listing began with, and the names below it.
    const std::string& getPath() const { return m_path; }
    /// Returns the last part of the path; empty for an entry that was moved from.
    std::string_view getName() const {
        const std::string_view path = m_path;
        return m_uName < path.size() ? path.substr(m_uName) : std::string_view();
    }
    /// Returns the number of directories between the start of the listing and the entry.
    unsigned getDepth() const { return m_uDepth; }

    Type getType() const { return m_type; }
    bool isFile() const { return m_type == kFile; }
    bool isDirectory() const { return m_type == kDirectory; }
    bool isLink() const { return m_type == kLink; }

    /// Returns the size in bytes.
    std::uint64_t getSize() const { return m_uSize; }
    /// Returns the permission bits, such as S_IRUSR.
    unsigned getPermissions() const { return m_uPermissions; }
    /// Returns the time of the last change of the content: seconds since 1970, also after 2038, and
    /// the nanoseconds of that second.
    std::int64_t getModifiedSeconds() const { return m_iSeconds; }
    unsigned getModifiedNanoseconds() const { return m_uNanoseconds; }

    /// Returns the errno if the status of the entry could not be read, or if a listing with
    /// kRecursive could not open the directory; otherwise 0.
    int getErrorNumber() const { return m_iError; }

private:
    friend class QBLFmEntries;

    std::string m_path;
    std::size_t m_uName = 0;  // where the name begins in the path
    std::uint64_t m_uSize = 0;
    std::int64_t m_iSeconds = 0;
    unsigned m_uNanoseconds = 0;
    unsigned m_uPermissions = 0;
    unsigned m_uDepth = 0;
    int m_iError = 0;
    Type m_type = kUnknown;
};

#endif
