#ifndef QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMNOCANCEL_HPP
#define QBLCORE_FILEMANAGEMENT_INTERNAL_QBLFMNOCANCEL_HPP

#include <pthread.h>
#include <unistd.h>

#include <cerrno>

/// Puts off the cancellation of the calling thread to the end of the scope: closing a file is where
/// it may take effect, and a destructor is no place for a thread to end.
class QBLFmNoCancel {
public:
    QBLFmNoCancel() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_iBefore); }
    ~QBLFmNoCancel() { pthread_setcancelstate(m_iBefore, &m_iBefore); }
    QBLFmNoCancel(const QBLFmNoCancel&) = delete;
    QBLFmNoCancel& operator=(const QBLFmNoCancel&) = delete;

private:
    int m_iBefore;
};

/// Closes a descriptor, leaving errno alone.
inline void qblCloseQuietly(int fd) {
    const QBLFmNoCancel noCancel;
    const int error = errno;
    ::close(fd);
    errno = error;
}

#endif
