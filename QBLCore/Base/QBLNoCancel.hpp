#ifndef QBLCORE_BASE_QBLNOCANCEL_HPP
#define QBLCORE_BASE_QBLNOCANCEL_HPP

#include <pthread.h>

/// Defers a cancellation of the calling thread until the end of the scope. It is for destructors,
/// because a cancellation must not leave a destructor, and for sequences that must not stop
/// halfway.
class QBLNoCancel {
public:
    QBLNoCancel() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_iBefore); }
    ~QBLNoCancel() { pthread_setcancelstate(m_iBefore, &m_iBefore); }
    QBLNoCancel(const QBLNoCancel&) = delete;
    QBLNoCancel& operator=(const QBLNoCancel&) = delete;

private:
    int m_iBefore;
};

#endif
