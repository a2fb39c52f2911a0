#ifndef I18N_CPP_I18N_INIT_H
#define I18N_CPP_I18N_INIT_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Starts the internationalisation layer: finds the installation's bin directory, reads the
/// resource file there or in its share/qblcore, and makes the converters that others are made from.
/// Calls are counted; only the first starts anything, and every one that returns wants a call of
/// I18NTerminate(). Until the first is through, bytes in encodings other than the ASCII-compatible
/// ones are not converted. Other threads may use strings and converters meanwhile, but not ICU
/// itself, which is told where its data is here or when the first converter is made.
///
/// Throws, in C++: QBLOutOfMemoryError, QBLStdExceptionError for another standard exception, or
/// what a part of the layer throws; nothing is started or counted then. A program in C cannot
/// catch it, and ends.
///
/// Threads: any thread; calls of the two functions wait for each other.
QBL_API void I18NInitialize(void);

/// Undoes a call of I18NInitialize(); the last one stops the layer and releases what the resources
/// have handed out. Other threads may use strings and converters meanwhile, but not the resources.
/// Without effect if the layer is not started.
QBL_API void I18NTerminate(void);

#ifdef __cplusplus
}
#endif

#endif
