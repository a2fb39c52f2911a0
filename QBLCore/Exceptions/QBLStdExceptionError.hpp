#ifndef QBLCORE_EXCEPTIONS_QBLSTDEXCEPTIONERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLSTDEXCEPTIONERROR_HPP

#include "QBLCore/Exceptions/QBLUnexpectedError.hpp"

/// A std::exception from other code. The text is its what().
///
/// Threads: as with QBLThrowable.
class QBL_API QBLStdExceptionError : public QBLUnexpectedError {
public:
    QBL_EXPORTED_THROWABLE(QBLStdExceptionError, QBLUnexpectedError)
};

#endif
