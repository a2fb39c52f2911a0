#ifndef QBLCORE_EXCEPTIONS_QBLASSERTERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLASSERTERROR_HPP

#include "QBLCore/Exceptions/QBLRuntimeError.hpp"

/// A failed assertion; the text is the assertion's statement.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLAssertError : public QBLRuntimeError {
public:
    QBL_EXPORTED_THROWABLE(QBLAssertError, QBLRuntimeError)
};

#endif
