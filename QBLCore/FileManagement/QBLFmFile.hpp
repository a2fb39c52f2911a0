#ifndef QBLCORE_FILEMANAGEMENT_QBLFMFILE_HPP
#define QBLCORE_FILEMANAGEMENT_QBLFMFILE_HPP

#include <fcntl.h>
#include <stdio.h>

#include "QBLCore/FileManagement/QBLFmDescriptor.hpp"
#include "QBLCore/Frame/QBLExport.h"

class I18NString;

/// A file, by a descriptor of the system; or one of the process's standard streams, which it never
/// closes. Offsets are long: where that has 32 bits a file of more than 2 GiB is refused with
/// EOVERFLOW; QBLFmFile64 takes it.
///
/// Nothing throws. A failure is a false, -1 or 0 result, and getLastErrorNumber() tells why. An
/// operation that a signal interrupts fails with EINTR; it is not taken up again.
///
/// Threads: one at a time for each object.
class QBL_API QBLFmFile {
public:
    /// @name Origins, modes and streams
    /// @{

    /// Where an offset counts from.
    enum seekorigin { begin = SEEK_SET, current = SEEK_CUR, end = SEEK_END };
    /// Flags of open(2), passed on as they are; they are combined by |.
    enum createmode : int {
        existing = 0,  ///< the file must be there
        create = O_CREAT,
        truncated = O_TRUNC,
        exclusive = O_EXCL,  ///< with create: the file must not be there
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
    /// Closes the file; a failure of that is not seen any more.
    virtual ~QBLFmFile();
    /// @}

    /// @name Reading, writing and the position
    /// @{

    /// @return bytes read, 0 at the end of the file, -1 on failure. On a closed object -1, with
    ///     neither errno nor the saved error touched.
    virtual long read(void* buffer, unsigned long size);
    /// @return bytes written, maybe fewer than asked for; -1 as for read()
    virtual long write(const void* buffer, unsigned long size);
    /// @return the new position; -1 on failure, but 0 on a standard stream that cannot seek
    virtual long seek(long offset, seekorigin origin);
    /// Goes to the end and copies the rest of another file there, from where that one stands. A
    /// file may be appended to itself, also by another object: the bytes from that place to the end
    /// that the file had before are copied. After a failure what was copied so far stays.
    virtual bool append(QBLFmFile& other);
    /// @}

    /// @name Opening and closing
    /// @{

    /// Opens a file, closing one that is open; a new one gets mode 0666 less the umask.
    /// @param readOnly  0 opens for reading and writing, whatever the flags say
    virtual bool open(const I18NString& name, createmode mode, int readOnly);
    virtual bool open(const char* name, createmode mode, int readOnly);
    /// Wraps a stream of the process, closing a file that is open.
    /// @return true also, deliberately, when only the closing failed: the object is closed then
    virtual bool open(stdiotypes stream);
    /// A closed object can be closed again. After a failure the descriptor is gone all the same.
    virtual bool close();
    /// @}

    /// @name Length and disk
    /// @{

    /// In bytes. @return -1 when nothing is open or the length is not to be had, as of more than
    ///     2 GiB where long has 32 bits
    virtual long getLength();
    /// Waits until the file is on the disk; nothing to do for a standard stream.
    virtual bool flush();
    /// Cuts the file, or lengthens it by zeros; not for a standard stream.
    virtual bool truncate(long length);
    /// @}

    /// @name Errors
    /// @{

    /// The errno of the last failure; 0 after a successful close().
    virtual int getLastErrorNumber();
    /// The system's text for it, valid until the next call.
    virtual const char* getLastErrorMessage();
    /// Saves the present errno, for derived classes.
    virtual void logLastError();
    /// @}

    /// @name The open file
    /// @{

    /// @return -1 when nothing is open.
    int getFileDescriptor() const;
    /// @}

private:
    QBLFmDescriptor m_file;
    char m_message[64];  // for errors that the system has no fixed text for
};

#endif
