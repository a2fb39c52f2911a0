#ifndef QBLCORE_FRAME_QBLCORE_H
#define QBLCORE_FRAME_QBLCORE_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Starts the library. Call it before all other functions of the library. Calls are counted, and
/// only the first call does the work. Each call needs a call of qblCoreTerminate(), even if the
/// start failed. After a failed start, the parts that did start keep running, except the thread
/// layer: no thread can be started until the library is stopped and started again. Further starts
/// return 0 nevertheless. In C++, a start may throw QBLOutOfMemoryError or QBLStdExceptionError;
/// such a start also counts.
///
/// Threads: any thread may call qblCoreInitialize() and qblCoreTerminate() at any time. A call
/// waits for a start or stop in progress. A cancellation of the caller takes effect only after the
/// call. Code that the library runs while it stops, such as a custodian's task, must not call them.
/// @return 0; -3 if a subsystem failed to start
QBL_API int qblCoreInitialize(void);
/// Undoes one start. Stops the library if it was the last start.
/// @return 0; -2 if the library was not started; -3 if the thread layer failed to stop
QBL_API int qblCoreTerminate(void);

/// Stores the version of this interface: major 1, minor 0. Ignores a null pointer.
/// @return 0
///
/// Threads: any thread may call this and the functions below.
QBL_API int qblCoreGetApiVersion(unsigned* major, unsigned* minor);
/// Checks if a program that was built against the given version of the interface can use the
/// library. The major versions must be equal, and the given minor version must not be newer.
/// @return 0 if the program can use the library; otherwise -1
QBL_API int qblCoreIsCompatibleWith(int major, int minor);

/// The same four functions under their general names.
QBL_API int qblInitialize(void);
QBL_API int qblTerminate(void);
QBL_API int qblGetApiVersion(unsigned* major, unsigned* minor);
QBL_API int qblIsCompatibleWith(int major, int minor);

typedef void (*QBLNewHandler)(void);
/// Sets the function that the process calls when memory runs out (std::set_new_handler). The
/// function must not use the library, because the library may allocate memory while it holds a
/// lock.
/// @param handler  null means no function
/// @return the previous handler
QBL_API QBLNewHandler qblSetNewHandler(QBLNewHandler handler);

/// Lowers the scheduling priority by 4 steps of niceness, for a process that does batch work. This
/// affects the calling thread and the threads that it starts later. Call it before other threads
/// are started.
/// @return 1; 0 if the system refused
QBL_API int qblSetBatchMode(void);

/// Prints that it is not implemented. The function deliberately stays, because programs link to it.
/// @return 0
QBL_API int qblErrorGetText(void);

#ifdef __cplusplus
}
#endif

#endif
