#ifndef QBLCORE_EXCEPTIONS_QBLTHREADRESOURCEERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLTHREADRESOURCEERROR_HPP

#include "QBLCore/Exceptions/QBLSystemError.hpp"

/// A thread or a lock could not be created, or did not work.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLThreadResourceError : public QBLSystemError {
public:
    QBL_EXPORTED_THROWABLE(QBLThreadResourceError, QBLSystemError)
};

#endif
