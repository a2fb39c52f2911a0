#ifndef QBLCORE_EXCEPTIONS_QBLTHROWABLETEXT_HPP
#define QBLCORE_EXCEPTIONS_QBLTHROWABLETEXT_HPP

#include <ostream>
#include <string>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Exceptions/QBLWhat.hpp"

/// @file
/// Throwables as UTF-8, for streams and formatters.
///
/// Errors: std::bad_alloc.
///
/// Threads: as for the throwable, which does not change.

/// Returns the text of qblWhat().
inline std::string qblText(const QBLThrowable& error) { return qblWhat(error); }

inline std::ostream& operator<<(std::ostream& out, const QBLThrowable& error) {
    return out << qblText(error);
}

#endif
