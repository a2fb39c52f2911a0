#ifndef QBLCORE_EXCEPTIONS_QBLRUNTIMEERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLRUNTIMEERROR_HPP

#include "QBLCore/Exceptions/QBLError.hpp"

/// An error that a correct caller can cause or should expect.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLRuntimeError : public QBLError {
public:
    QBL_EXPORTED_THROWABLE(QBLRuntimeError, QBLError)
};

#endif
