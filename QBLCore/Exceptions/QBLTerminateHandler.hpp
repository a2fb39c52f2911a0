#ifndef QBLCORE_EXCEPTIONS_QBLTERMINATEHANDLER_HPP
#define QBLCORE_EXCEPTIONS_QBLTERMINATEHANDLER_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// Installs a handler for uncaught exceptions. Before the process ends, the handler writes the
/// exception to standard error: a throwable of the library as a line of XML, another std::exception
/// as its what(). Then it calls the handler that was installed before.
///
/// Threads: any thread may call this; a second call changes nothing.
QBL_API void qblInstallTerminateHandler();

#endif
