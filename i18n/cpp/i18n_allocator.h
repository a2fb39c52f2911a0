#ifndef I18N_CPP_I18N_ALLOCATOR_H
#define I18N_CPP_I18N_ALLOCATOR_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// An allocator that a caller can pass to strings and converters. It must behave like realloc(3): a
/// null block allocates, size 0 frees the block and returns null, and any other call resizes the
/// block.
/// @param context  the caller's pointer, passed on unchanged
/// @param size  in bytes
/// @param error  receives 0 on success, another code on failure
/// @return the block; null on failure. The old block stays valid then
typedef char* (*I18NStringAllocator)(void* context, char* block, int size, int* error);

/// The default allocator, which uses the C library. Returns null with error -10 for a negative
/// size, and with error -1 if memory is exhausted.
///
/// Threads: any thread may call it.
QBL_API char* I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(void* context, char* block, int size,
                                                   int* error);

#ifdef __cplusplus
}
#endif

#endif
