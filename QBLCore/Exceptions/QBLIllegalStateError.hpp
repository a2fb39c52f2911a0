#ifndef QBLCORE_EXCEPTIONS_QBLILLEGALSTATEERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLILLEGALSTATEERROR_HPP

#include "QBLCore/Exceptions/QBLRuntimeError.hpp"

/// An operation that the object's state does not allow.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLIllegalStateError : public QBLRuntimeError {
public:
    QBL_EXPORTED_THROWABLE(QBLIllegalStateError, QBLRuntimeError)
};

#endif
