#ifndef QBLCORE_EXCEPTIONS_QBLWHAT_HPP
#define QBLCORE_EXCEPTIONS_QBLWHAT_HPP

#include <exception>
#include <string>

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

class QBLThrowable;

/// Returns one line of UTF-8 text that describes an exception of any type: QBLThrowable::format()
/// in the default locales of QBLCatalogueSettings, the what() of a std::exception, or a thrown
/// text. For an object of another type, and if what() is null, returns "exception of type " and the
/// name of the type.
/// Each control character becomes a blank, and so does each line or paragraph separator (U+2028,
/// U+2029). Returns an empty text for a null pointer, and outside of handlers.
///
///     catch (...) { std::cerr << qblWhat() << '\n'; }
///
/// Errors: std::bad_alloc. If memory does not suffice to format a throwable, returns the name of
/// its class instead.
///
/// Threads: any thread may call these functions; several threads may pass the same exception.
QBL_API std::string qblWhat(std::exception_ptr error);
/// Describes the current exception, for handlers. A thread's cancellation has no text.
QBL_API std::string qblWhat();
QBL_API std::string qblWhat(const QBLThrowable& error);

/// Returns the text that toString() of the throwable would return, without changing the throwable.
/// @throws QBLOutOfMemoryError
QBL_API std::string qblXml(const QBLThrowable& error);

#endif
