#ifndef QBLCORE_FRAME_QBLCORE_H
#define QBLCORE_FRAME_QBLCORE_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Starts the library; calls are counted, and only the first one does the work. Call it before
/// any other facility and take it back with qblCoreTerminate(), also when it failed. A failed
/// start counts, and what did start stays, but for the thread layer: no thread can be started
/// until the library has been stopped and started anew. Further starts return 0 all the same.
/// From C++, QBLOutOfMemoryError or QBLStdExceptionError may leave it; that start counts, too.
///
/// Threads: any thread may call start and stop at any time; each call returns when the start or
/// stop under way is complete, and puts a cancellation of its caller off until then. Neither may be
/// called by work that the library itself runs while it stops, such as a custodian's task.
/// @return 0; -3 if a subsystem failed to start
QBL_API int qblCoreInitialize(void);
/// Takes one start back; the last one stops the library.
/// @return 0; -2 if the library was not started; -3 if the thread layer failed to stop
QBL_API int qblCoreTerminate(void);

/// Stores the version of this interface, 1 and 0; a null pointer is passed over. @return 0
///
/// Threads: any thread, as for all that follows.
QBL_API int qblCoreGetApiVersion(unsigned* major, unsigned* minor);
/// Whether a caller built against a version of this interface can use the library: the same
/// major version and no newer minor one.
/// @return 0 if it can, -1 if not
QBL_API int qblCoreIsCompatibleWith(int major, int minor);

/// The same four under their general names.
QBL_API int qblInitialize(void);
QBL_API int qblTerminate(void);
QBL_API int qblGetApiVersion(unsigned* major, unsigned* minor);
QBL_API int qblIsCompatibleWith(int major, int minor);

typedef void (*QBLNewHandler)(void);
/// Installs what the process calls when memory runs out (std::set_new_handler).
/// @param handler  null for none
/// @return the handler before
QBL_API QBLNewHandler qblSetNewHandler(QBLNewHandler handler);

/// Lowers the scheduling priority for batch work by 4 steps of niceness: that of the calling
/// thread and of those that it starts from then on. Call it before others are started.
/// @return 1; 0 if the system refused
QBL_API int qblSetBatchMode(void);

/// Prints that it is not implemented. Deliberately kept so: programs link to it.
/// @return 0
QBL_API int qblErrorGetText(void);

#ifdef __cplusplus
}
#endif

#endif
