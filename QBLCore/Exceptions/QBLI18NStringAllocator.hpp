#ifndef QBLCORE_EXCEPTIONS_QBLI18NSTRINGALLOCATOR_HPP
#define QBLCORE_EXCEPTIONS_QBLI18NSTRINGALLOCATOR_HPP

#include "QBLCore/Frame/QBLExport.h"

/// Allocates blocks for I18NString::toBytes, to be freed with delete[]. Always deletes the old
/// block. Unlike realloc(3), does not copy its contents.
/// @param context  not used
/// @param old  a block of new char[]; may be null
/// @param size  in bytes; below 1 for no new block
/// @param status  receives 0, or -1 if memory is exhausted; may be null
/// @return the new block; null if none was requested, and after a failure
///
/// Threads: any thread.
QBL_API char* QBLI18NStringAllocator(void* context, char* old, int size, int* status);

#endif
