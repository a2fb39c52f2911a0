#ifndef QBLCORE_EXCEPTIONS_QBLUNEXPECTEDERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLUNEXPECTEDERROR_HPP

#include "QBLCore/Exceptions/QBLError.hpp"

/// An error that the caller could not have foreseen.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLUnexpectedError : public QBLError {
public:
    QBL_EXPORTED_THROWABLE(QBLUnexpectedError, QBLError)
};

#endif
