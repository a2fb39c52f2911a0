#ifndef QBLCORE_EXCEPTIONS_QBLSYSTEMERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLSYSTEMERROR_HPP

#include "QBLCore/Exceptions/QBLUnexpectedError.hpp"

/// The system refused an operation.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLSystemError : public QBLUnexpectedError {
public:
    QBL_EXPORTED_THROWABLE(QBLSystemError, QBLUnexpectedError)
};

#endif
