#ifndef QBLCORE_THREADS_QBLTHREADPROCESS_H
#define QBLCORE_THREADS_QBLTHREADPROCESS_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Starts the thread layer and the parts of QBLThread that the process needs. Calls are counted:
/// the layer stops when qblThreadProcessTerminate() has been called as often as this function.
/// qblCoreInitialize() calls this function first.
///
/// Threads: any thread may call both functions at any time.
/// @param name  not used
/// @return 0; -2 if out of memory; -1 for any other failure
QBL_API int qblThreadProcessInitialize(const char* name);
/// Undoes one start. Stops the layer if this was the last start. Does not wait for threads that
/// still run.
/// @param name  not used
/// @return 0
QBL_API int qblThreadProcessTerminate(const char* name);

#ifdef __cplusplus
}
#endif

#endif
