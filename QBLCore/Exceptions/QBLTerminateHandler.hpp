#ifndef QBLCORE_EXCEPTIONS_QBLTERMINATEHANDLER_HPP
#define QBLCORE_EXCEPTIONS_QBLTERMINATEHANDLER_HPP

#include "QBLCore/Frame/QBLExport.h"

/// From now on an uncaught throwable of the library is written to standard error, as a line of XML,
/// before the process ends; of another exception its what(). The handler that was installed before
/// is called afterwards.
///
/// Threads: any thread; a second call changes nothing.
QBL_API void qblInstallTerminateHandler();

#endif
