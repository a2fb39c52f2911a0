#ifndef I18N_CPP_I18N_ERRORS_HPP
#define I18N_CPP_I18N_ERRORS_HPP

#include "QBLCore/Exceptions/QBLRuntimeError.hpp"
#include "QBLCore/Exceptions/QBLUnexpectedError.hpp"

/// A text that cannot be handled, or an encoding that is not there; the code is one of
/// I18NErrorCodes.
///
/// Threads: as with QBLThrowable.
class QBL_API I18NRuntimeError : public QBLRuntimeError {
public:
    QBL_EXPORTED_THROWABLE(I18NRuntimeError, QBLRuntimeError)
};

/// A failure inside the internationalisation layer.
///
/// Threads: as with QBLThrowable.
class QBL_API I18NUnexpectedError : public QBLUnexpectedError {
public:
    QBL_EXPORTED_THROWABLE(I18NUnexpectedError, QBLUnexpectedError)
};

#endif
