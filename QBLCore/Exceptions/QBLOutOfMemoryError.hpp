#ifndef QBLCORE_EXCEPTIONS_QBLOUTOFMEMORYERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLOUTOFMEMORYERROR_HPP

#include "QBLCore/Exceptions/QBLSystemError.hpp"

/// An allocation failed.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLOutOfMemoryError : public QBLSystemError {
public:
    QBL_EXPORTED_THROWABLE(QBLOutOfMemoryError, QBLSystemError)
};

#endif
