#ifndef QBLCORE_FILEMANAGEMENT_QBLFMFILE_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMFILE_HPP

#include <fcntl.h>
#include <stdio.h>

#include "QBLCore/FileManagement/QBLFmDescriptor.hpp"
#include "QBLCore/FileManagement/QBLFmPathText.hpp"
#include "QBLCore/Frame/QBLExport.h"

class I18NString;

/// A file, or one of the standard streams of the process. A standard stream is never closed.
/// Offsets have the type long: if long has 32 bits, a file of more than 2 GiB is refused with
/// EOVERFLOW. QBLFmFile64 accepts such a file.
///
/// No operation throws. A failed operation returns false, -1 or 0, and getLastErrorNumber() tells
/// why. An operation that a signal interrupts fails with EINTR and is not repeated.
///
/// Threads: one thread at a time for each object.
class QBL_API QBLFmFile {
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

    QBLFmFile();
    QBLFmFile(const QBLFmFile&) = delete;
    QBLFmFile& operator=(const QBLFmFile&) = delete;
    /// Closes the file and ignores errors.
    virtual ~QBLFmFile();
    /// @}

    /// @name Reading, writing and the position
    /// @{

    /// @return the number of bytes read; 0 at the end of the file; -1 on failure. On a closed
    ///     object, returns -1 and leaves errno and the saved error unchanged.
    virtual long read(void* buffer, unsigned long size);
    /// @return the number of bytes written, possibly fewer than `size`; -1 in the same cases as
    ///     read()
    virtual long write(const void* buffer, unsigned long size);
    /// @return the new position; -1 on failure, but 0 on a standard stream that cannot seek
    virtual long seek(long offset, seekorigin origin);
    /// Seeks to the end of this file and copies the other file there, from its current position to
    /// its end. A file may be appended to itself, also through another object. The call then copies
    /// up to the old end of the file. After a failure, the bytes copied so far stay.
    virtual bool append(QBLFmFile& other);
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

    /// @return the length in bytes; -1 if nothing is open, the length is unknown, or it does not
    ///     fit into a long
    virtual long getLength();
    /// Waits until the file is on the disk; does nothing for a standard stream.
    virtual bool flush();
    /// Truncates the file, or extends it with zeros; fails for a standard stream.
    virtual bool truncate(long length);
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
    /// @}

private:
    QBLFmDescriptor m_file;
    char m_message[64];  // for error numbers without a fixed text
};

#endif
