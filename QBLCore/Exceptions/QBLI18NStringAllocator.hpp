#ifndef QBLCORE_EXCEPTIONS_QBLI18NSTRINGALLOCATOR_HPP
#define QBLCORE_EXCEPTIONS_QBLI18NSTRINGALLOCATOR_HPP

#include "QBLCore/Frame/QBLExport.h"
#include "QBLCore/Frame/QBLLanguage.hpp"

/// Allocates blocks for I18NString::toBytes, to be freed with delete[]. Always deletes the old
/// block. Unlike realloc(3), does not copy its contents.
/// @param context  not used
/// @param old  a block of new char[]; may be null
/// @param size  in bytes; if it is below 1, no new block is allocated
/// @param status  receives 0, or -1 if memory is exhausted; may be null
/// @return the new block; null if no block was requested, or after a failure
///
/// Threads: any thread may call it.
QBL_API char* QBLI18NStringAllocator(void* context, char* old, int size, int* status);

#endif
