#ifndef QBLCORE_BASE_QBLNOCANCEL_HPP
#define QBLCORE_BASE_QBLNOCANCEL_HPP

#include <pthread.h>

/// Puts off the cancellation of the calling thread to the end of the scope: for destructors, which
/// no cancellation may leave, and for sequences that must not stop halfway.
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
