#ifndef QBLCORE_THREADS_INTERNAL_QBLNOCANCEL_HPP
#define QBLCORE_THREADS_INTERNAL_QBLNOCANCEL_HPP

#include <pthread.h>

/// Puts off the cancellation of the calling thread to the end of the scope: for destructors, which
/// no cancellation may leave, and for sequences that must not stop halfway.
class QBLNoCancel {
public:
    QBLNoCancel() : QBLNoCancel(PTHREAD_CANCEL_DISABLE) {}
    ~QBLNoCancel() { pthread_setcancelstate(m_iBefore, &m_iBefore); }
    QBLNoCancel(const QBLNoCancel&) = delete;
    QBLNoCancel& operator=(const QBLNoCancel&) = delete;

protected:
    explicit QBLNoCancel(int state) { pthread_setcancelstate(state, &m_iBefore); }

private:
    int m_iBefore;
};

/// Allows it again in a scope within.
class QBLMayCancel : private QBLNoCancel {
public:
    QBLMayCancel() : QBLNoCancel(PTHREAD_CANCEL_ENABLE) {}
};

#endif
