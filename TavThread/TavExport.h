#ifndef TAVTHREAD_TAVEXPORT_H
#define TAVTHREAD_TAVEXPORT_H

/// Exports a function from the shared object. Functions without this mark are hidden in it.
#define TAV_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define TAV_EXTERN_C_BEGIN extern "C" {
#define TAV_EXTERN_C_END }
#define TAV_DEFAULT(value) = value
#else
#define TAV_EXTERN_C_BEGIN
#define TAV_EXTERN_C_END
#define TAV_DEFAULT(value)
#endif

#endif
