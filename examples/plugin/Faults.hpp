#ifndef EXAMPLES_PLUGIN_FAULTS_HPP
#define EXAMPLES_PLUGIN_FAULTS_HPP

#include "QBLCore/Exceptions/QBLAssertError.hpp"
#include "QBLCore/Exceptions/QBLException.hpp"
#include "QBLCore/Exceptions/QBLIllegalArgumentError.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLIndexOutOfBoundsError.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLStdExceptionError.hpp"
#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"
#include "QBLCore/Exceptions/QBLUnknownError.hpp"
#include "QBLCore/Exceptions/QBLUnsupportedOperationError.hpp"
#include "QBLCore/PlugIns/QBLPluginException.hpp"
#include "i18n/cpp/i18n_errors.hpp"

/// An error class of the program. Plug-in and host both compile it from this header; default
/// visibility makes it one type for both.
class [[gnu::visibility("default")]] DiskFault : public QBLException {
public:
    using QBLException::QBLException;
    QBL_EXCEPTION_METHODS(DiskFault)
};

/// The classes that the plug-in throws, each with its constructor arguments.
#define PLUGIN_FAULTS(FAULT)                          \
    FAULT(QBLError, (1, "text"))                      \
    FAULT(QBLRuntimeError, (2, "text"))               \
    FAULT(QBLAssertError, (3, "text"))                \
    FAULT(QBLIllegalArgumentError, (4, "text"))       \
    FAULT(QBLIllegalStateError, (5, "text"))          \
    FAULT(QBLIndexOutOfBoundsError, (6, "text"))      \
    FAULT(QBLUnexpectedError, (7, "text"))            \
    FAULT(QBLSystemError, (8, "text"))                \
    FAULT(QBLOutOfMemoryError, (9, "text"))           \
    FAULT(QBLThreadResourceError, (10, "text"))       \
    FAULT(QBLUnsupportedOperationError, (11, "text")) \
    FAULT(QBLStdExceptionError, (12, "text"))         \
    FAULT(QBLUnknownError, (13, "text"))              \
    FAULT(I18NRuntimeError, (-4, "text"))             \
    FAULT(I18NUnexpectedError, (-7, "text"))          \
    FAULT(QBLPluginException, (QBLPluginLoadFailed))  \
    FAULT(DiskFault, (16))

enum PluginFault {
#define FAULT(Class, arguments) k##Class,
    PLUGIN_FAULTS(FAULT)
#undef FAULT
};

#endif
