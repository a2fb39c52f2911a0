#ifndef QBLCORE_EXCEPTIONS_QBLILLEGALARGUMENTERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLILLEGALARGUMENTERROR_HPP

#include "QBLCore/Exceptions/QBLRuntimeError.hpp"

/// An argument that the operation does not accept.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLIllegalArgumentError : public QBLRuntimeError {
public:
    QBL_EXPORTED_THROWABLE(QBLIllegalArgumentError, QBLRuntimeError)
};

#endif
