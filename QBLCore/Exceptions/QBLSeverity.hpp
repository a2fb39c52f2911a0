#ifndef QBLCORE_EXCEPTIONS_QBLSEVERITY_HPP
#define QBLCORE_EXCEPTIONS_QBLSEVERITY_HPP

#include "QBLCore/Frame/QBLLanguage.hpp"

/// How severe an error or a message is. The type can hold any int, but only these values have
/// names.
enum QBLSeverity : int {
    QBLSeverityFatal = 0,
    QBLSeverityError = 1,
    QBLSeverityWarning = 2,
    QBLSeverityInformation = 3
};

#endif
