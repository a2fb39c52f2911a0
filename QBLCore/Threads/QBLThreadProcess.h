#ifndef QBLCORE_THREADS_QBLTHREADPROCESS_H
#define QBLCORE_THREADS_QBLTHREADPROCESS_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Starts the thread layer and what QBLThread needs for the process. Calls are counted: the
/// threads work until as many stops. qblCoreInitialize() does this first of all.
///
/// Threads: any thread may call either at any time.
/// @param name  not used
/// @return 0; -2 out of memory; -1 for any other failure
QBL_API int qblThreadProcessInitialize(const char* name);
/// Takes one start back; the last one stops. Threads that still run are not waited for.
/// @param name  not used
/// @return 0
QBL_API int qblThreadProcessTerminate(const char* name);

#ifdef __cplusplus
}
#endif

#endif
