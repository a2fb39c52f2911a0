#ifndef QBLCORE_EXCEPTIONS_QBLERROR_HPP
#define QBLCORE_EXCEPTIONS_QBLERROR_HPP

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Exceptions/QBLThrowableClass.hpp"

/// Base class of the concrete error classes.
///
/// Threads: as with QBLThrowable.
class QBL_API QBLError : public QBLThrowable {
public:
    QBL_EXPORTED_THROWABLE(QBLError, QBLThrowable)
};

#endif
