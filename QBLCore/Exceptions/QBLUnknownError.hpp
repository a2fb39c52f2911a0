#ifndef QBLCORE_EXCEPTIONS_QBLUNKNOWNERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLUNKNOWNERROR_HPP

#include "QBLCore/Exceptions/QBLUnexpectedError.hpp"

/// An exception of unknown type.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLUnknownError : public QBLUnexpectedError {
public:
    QBL_EXPORTED_THROWABLE(QBLUnknownError, QBLUnexpectedError)
};

#endif
