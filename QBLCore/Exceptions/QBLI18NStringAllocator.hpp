#ifndef QBLCORE_EXCEPTIONS_QBLI18NSTRINGALLOCATOR_HPP
#define QBLCORE_EXCEPTIONS_QBLI18NSTRINGALLOCATOR_HPP

#include "QBLCore/Frame/QBLExport.h"

/// For I18NString::toBytes: blocks for delete[]. Unlike realloc(3) it keeps nothing of the old
/// block, which it deletes in any case.
/// @param context  not used
/// @param old  a block of new char[]; null for none
/// @param size  in bytes; below 1 for no new block
/// @param status  receives 0, or -1 when memory is exhausted; null if not wanted
/// @return the block; null for none, and after a failure
///
/// Threads: any thread.
QBL_API char* QBLI18NStringAllocator(void* context, char* old, int size, int* status);

#endif
