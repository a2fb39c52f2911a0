#ifndef QBLCORE_EXCEPTIONS_QBLINDEXOUTOFBOUNDSERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLINDEXOUTOFBOUNDSERROR_HPP

#include "QBLCore/Exceptions/QBLRuntimeError.hpp"

/// An index outside the valid range.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLIndexOutOfBoundsError : public QBLRuntimeError {
public:
    QBL_EXPORTED_THROWABLE(QBLIndexOutOfBoundsError, QBLRuntimeError)
};

#endif
