#ifndef I18N_CPP_I18N_INIT_H
#define I18N_CPP_I18N_INIT_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Starts the internationalisation layer: finds the installation's bin directory, reads the
/// resource file there or in its share/qblcore, and prepares converters that others are copied
/// from. Calls are counted. Only the first call starts the layer, and every call that returns needs
/// a matching call of I18NTerminate(). Until the first call returns, a string made from bytes that
/// need a converter is empty. During the call, other threads may use strings and converters, but
/// not ICU itself: this call, or the first converter, sets ICU's data directory.
///
/// In C++ it throws QBLOutOfMemoryError, QBLStdExceptionError for another standard exception, or
/// whatever a part of the layer throws. Nothing is started or counted then. A C program cannot
/// catch the exception and ends.
///
/// Threads: any thread may call it. Calls of the two functions wait for each other.
QBL_API void I18NInitialize(void);

/// Undoes a call of I18NInitialize(). The last call stops the layer and releases everything that
/// the resources have handed out. During the call, other threads may use strings and converters,
/// but not the resources. Does nothing if the layer is not started.
QBL_API void I18NTerminate(void);

#ifdef __cplusplus
}
#endif

#endif
