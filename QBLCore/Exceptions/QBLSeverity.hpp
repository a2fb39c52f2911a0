#ifndef QBLCORE_EXCEPTIONS_QBLSEVERITY_HPP
#define QBLCORE_EXCEPTIONS_QBLSEVERITY_HPP

/// How grave an error or a message is; the type can carry any int, only these have names.
enum QBLSeverity : int {
    QBLSeverityFatal = 0,
    QBLSeverityError = 1,
    QBLSeverityWarning = 2,
    QBLSeverityInformation = 3
};

#endif
