#ifndef QBLCORE_BASE_QBLKEEPERRNO_HPP
#define QBLCORE_BASE_QBLKEEPERRNO_HPP

#include <cerrno>

/// Restores errno at the end of the scope. Cleanup after a failure, such as closing a file, must
/// not hide why the operation failed.
class QBLKeepErrno {
public:
    QBLKeepErrno() : m_iError(errno) {}
    ~QBLKeepErrno() { errno = m_iError; }
    QBLKeepErrno(const QBLKeepErrno&) = delete;
    QBLKeepErrno& operator=(const QBLKeepErrno&) = delete;

private:
    const int m_iError;
};

#endif
