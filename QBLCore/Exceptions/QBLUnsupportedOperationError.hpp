#ifndef QBLCORE_EXCEPTIONS_QBLUNSUPPORTEDOPERATIONERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLUNSUPPORTEDOPERATIONERROR_HPP

#include "QBLCore/Exceptions/QBLSystemError.hpp"

/// An operation that this system does not support.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLUnsupportedOperationError : public QBLSystemError {
public:
    QBL_EXPORTED_THROWABLE(QBLUnsupportedOperationError, QBLSystemError)
};

#endif
