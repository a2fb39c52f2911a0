#ifndef I18N_CPP_I18N_ERRORS_HPP
#define I18N_CPP_I18N_ERRORS_HPP

#include "QBLCore/Exceptions/QBLRuntimeError.hpp"
#include "QBLCore/Exceptions/QBLUnexpectedError.hpp"

/// Thrown for a text that cannot be handled, or for an encoding that does not exist. The code is
/// one of I18NErrorCodes.
///
/// Threads: as for QBLThrowable.
class QBL_API I18NRuntimeError : public QBLRuntimeError {
public:
    QBL_EXPORTED_THROWABLE(I18NRuntimeError, QBLRuntimeError)
};

/// Thrown for a failure inside the internationalisation layer.
///
/// Threads: as for QBLThrowable.
class QBL_API I18NUnexpectedError : public QBLUnexpectedError {
public:
    QBL_EXPORTED_THROWABLE(I18NUnexpectedError, QBLUnexpectedError)
};

#endif
