#ifndef QBLCORE_FRAME_QBLEXPORT_H
#define QBLCORE_FRAME_QBLEXPORT_H

/// Marks what the library exports; everything else stays inside the shared object.
#define QBL_API __attribute__((visibility("default")))

#endif
