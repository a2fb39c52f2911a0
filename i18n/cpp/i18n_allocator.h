#ifndef I18N_CPP_I18N_ALLOCATOR_H
#define I18N_CPP_I18N_ALLOCATOR_H

#include "QBLCore/Frame/QBLExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// How strings and converters get their memory where a caller says so; with the semantics of
/// realloc(3): a null block allocates, size 0 frees and gives null, else the block is resized.
/// @param context  the caller's, passed on
/// @param size  in bytes
/// @param error  receives 0, or a code other than 0 after a failure
/// @return the block; null after a failure, when the old block is still there
typedef char* (*I18NStringAllocator)(void* context, char* block, int size, int* error);

/// The default allocator, of the C library. A negative size gives null and -10, exhausted memory
/// null and -1.
///
/// Threads: any thread.
QBL_API char* I18N_STRINGBUFFER_ALLOCATOR_CALLBACK(void* context, char* block, int size,
                                                   int* error);

#ifdef __cplusplus
}
#endif

#endif
