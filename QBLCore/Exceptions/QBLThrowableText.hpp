#ifndef QBLCORE_EXCEPTIONS_QBLTHROWABLETEXT_HPP
#define QBLCORE_EXCEPTIONS_QBLTHROWABLETEXT_HPP

#include <memory>
#include <ostream>
#include <string>

#include "QBLCore/Exceptions/QBLThrowable.hpp"

/// @file
/// Throwables as UTF-8, for streams and formatters.
///
/// Errors: QBLOutOfMemoryError.
///
/// Threads: as for the throwable, which does not change.

/// Returns the text of getMessage(); the name of the class and the code if there is no text.
inline std::string qblText(const QBLThrowable& error) {
    const std::unique_ptr<QBLThrowable> copy(error.clone());  // getMessage() may change its object
    const char* const text = copy->getMessage();
    if (text != nullptr && *text != '\0') return text;
    const char* const code = copy->getErrorCodeString();
    return std::string(error.getThrowableName()) + (code != nullptr ? " " : "") +
           (code != nullptr ? code : "");
}

inline std::ostream& operator<<(std::ostream& out, const QBLThrowable& error) {
    return out << qblText(error);
}

#endif
