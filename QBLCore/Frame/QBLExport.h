#ifndef QBLCORE_FRAME_QBLEXPORT_H
#define QBLCORE_FRAME_QBLEXPORT_H

/// Exports a class or function from the shared object. Names without this mark are hidden in it.
#define QBL_API __attribute__((visibility("default")))

#endif
