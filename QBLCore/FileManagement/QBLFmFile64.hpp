#ifndef QBLCORE_FILEMANAGEMENT_QBLFMFILE64_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMFILE64_HPP

#include <fcntl.h>
#include <stdio.h>

#include "QBLCore/FileManagement/QBLFmDescriptor.hpp"
#include "QBLCore/FileManagement/QBLFmPathText.hpp"
#include "QBLCore/Frame/QBLExport.h"
#include "i18n/cpp/i18n_string.hpp"

#pragma GCC diagnostic push
// The destructor is deliberately not virtual: the virtual table begins with read(). Never delete an
// object of a derived class through a pointer to this class.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// Works like QBLFmFile, but has 64-bit offsets in every build, and therefore accepts files of any
/// length. The destructor is deliberately not virtual: do not delete an object of a derived class
/// through a pointer to this class.
///
/// Threads: one thread at a time for each object.
class QBL_API QBLFmFile64 {
public:
    /// @name Origins, modes and streams
    /// @{

    /// The origin of an offset.
    enum seekorigin { begin = SEEK_SET, current = SEEK_CUR, end = SEEK_END };
    /// Flags of open(2), passed on unchanged; combine them with |.
    enum createmode : int {
        existing = 0,  ///< the file must exist
        create = O_CREAT,
        truncated = O_TRUNC,
        exclusive = O_EXCL,  ///< with create: the file must not exist
        appending = O_APPEND
    };
    enum stdiotypes { standardinput = 0, standardoutput = 1, standarderror = 2 };
    friend createmode operator|(createmode a, createmode b) {
        return static_cast<createmode>(static_cast<int>(a) | static_cast<int>(b));
    }
    /// @}

    /// @name Making an object
    /// @{

    QBLFmFile64();
    QBLFmFile64(const QBLFmFile64&) = delete;
    QBLFmFile64& operator=(const QBLFmFile64&) = delete;
    /// Closes the file and ignores errors.
    ~QBLFmFile64();
    /// @}

    /// @name Reading, writing and the position
    /// @{

    /// @return the number of bytes read; 0 at the end of the file; -1 on failure. On a closed
    ///     object, returns -1 and leaves errno and the saved error unchanged.
    virtual int read(void* buffer, unsigned int size);
    /// @return the number of bytes written, possibly fewer than `size`; -1 in the same cases as
    ///     read()
    virtual int write(const void* buffer, unsigned int size);
    /// @return the new position; -1 on failure, but 0 on a standard stream that cannot seek
    virtual long long seek(long long offset, seekorigin origin);
    /// Seeks to the end of this file and copies the other file there, from its current position to
    /// its end. A file may be appended to itself, also through another object. The call then copies
    /// up to the old end of the file. After a failure, the bytes copied so far stay.
    virtual bool append(QBLFmFile64& other);
    /// @}

    /// @name Opening and closing
    /// @{

    /// Closes the file if one is open, and opens another file. A new file gets mode 0666 minus the
    /// umask.
    /// @param readOnly  if 0, opens the file for reading and writing, even if `mode` has another
    ///     access mode
    virtual bool open(const I18NString& name, createmode mode, int readOnly);
    virtual bool open(const char* name, createmode mode, int readOnly);
    /// For std::filesystem::path. A path with a NUL fails with EFAULT.
    template <class Path>
    auto open(const Path& name, createmode mode, int readOnly)
        -> decltype(qblPathText(name), bool()) {
        return open(qblPathText(name), mode, readOnly);
    }
    /// Closes the file if one is open, and wraps a standard stream of the process.
    /// @return true if the stream was wrapped. Deliberately also true if closing the old file
    ///     failed; the object is closed in this case.
    virtual bool open(stdiotypes stream);
    /// Closes the file. Returns true for a closed object. The descriptor is released even if the
    /// system reports an error.
    virtual bool close();
    /// @}

    /// @name Length and disk
    /// @{

    /// @return the length in bytes; 0 if nothing is open or the length is unknown
    virtual long long getLength();
    /// Waits until the file is on the disk; does nothing for a standard stream.
    virtual bool flush();
    /// Truncates the file, or extends it with zeros; fails for a standard stream.
    virtual bool truncate(long long length);
    /// @}

    /// @name Errors
    /// @{

    /// Returns the errno of the last failure; 0 after a successful close().
    virtual int getLastErrorNumber();
    /// Returns the system's text for the last error; valid until the next call.
    virtual const char* getLastErrorMessage();
    /// Saves errno as the last error; for derived classes.
    virtual void logLastError();
    /// @}

    /// @name The open file
    /// @{

    /// @return the descriptor; -1 if nothing is open
    int getFileDescriptor() const;
    /// Returns the name that was passed to open(); empty for a standard stream.
    const I18NString& getFileName() const { return m_name; }
    /// @}

private:
    QBLFmDescriptor m_file;
    unsigned int m_reserved;  // unused, always 0
    I18NString m_name;        // name of the open file
    char m_message[64];       // for error numbers without a fixed text
};

#pragma GCC diagnostic pop

#endif
