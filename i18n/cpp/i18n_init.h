#ifndef I18N_CPP_I18N_INIT_H
#define I18N_CPP_I18N_INIT_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Starts the internationalisation layer: finds the installation's bin directory, reads the
/// resource file there or in the installation's share/qblcore, and prepares the converters that
/// I18NConverter copies. Calls are counted. Only the first call starts the layer, and every call
/// that returns needs a matching call of I18NTerminate(). Until the first call returns, a string
/// made from bytes is empty if their encoding needs a converter. During the call, other threads may
/// use strings and converters, but must not call ICU directly, because this call or the first
/// converter sets ICU's data directory.
///
/// The function throws QBLOutOfMemoryError, QBLStdExceptionError for another standard exception, or
/// whatever a part of the layer throws. After an exception, nothing is started and the call does
/// not count. A C program cannot catch the exception, so the program ends.
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
