#ifndef QBLCORE_EXCEPTIONS_QBLINDEXOUTOFBOUNDSERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLINDEXOUTOFBOUNDSERROR_HPP

#include "QBLCore/Exceptions/QBLRuntimeError.hpp"

/// A position outside of what it indexes.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLIndexOutOfBoundsError : public QBLRuntimeError {
public:
    QBL_EXPORTED_THROWABLE(QBLIndexOutOfBoundsError, QBLRuntimeError)
};

#endif
