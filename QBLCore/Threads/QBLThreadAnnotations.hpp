#ifndef QBLCORE_THREADS_QBLTHREADANNOTATIONS_HPP
#define QBLCORE_THREADS_QBLTHREADANNOTATIONS_HPP

#include "QBLCore/Frame/QBLLanguage.hpp"

/// Clang's thread-safety annotations (-Wthread-safety). They tell which lock an operation takes or
/// needs, and which lock guards a field. For other compilers, the macros are empty.
#if defined(__clang__)
#define QBL_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define QBL_THREAD_ATTRIBUTE(x)
#endif

#define QBL_CAPABILITY(name) QBL_THREAD_ATTRIBUTE(capability(name))
#define QBL_SCOPED_CAPABILITY QBL_THREAD_ATTRIBUTE(scoped_lockable)
#define QBL_GUARDED_BY(lock) QBL_THREAD_ATTRIBUTE(guarded_by(lock))
#define QBL_REQUIRES(...) QBL_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define QBL_ACQUIRE(...) QBL_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define QBL_ACQUIRE_SHARED(...) QBL_THREAD_ATTRIBUTE(acquire_shared_capability(__VA_ARGS__))
#define QBL_TRY_ACQUIRE(...) QBL_THREAD_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
#define QBL_TRY_ACQUIRE_SHARED(...) QBL_THREAD_ATTRIBUTE(try_acquire_shared_capability(__VA_ARGS__))
#define QBL_RELEASE(...) QBL_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define QBL_RELEASE_GENERIC(...) QBL_THREAD_ATTRIBUTE(release_generic_capability(__VA_ARGS__))
/// For code that does not take its locks with annotated operations.
#define QBL_NO_THREAD_SAFETY_ANALYSIS QBL_THREAD_ATTRIBUTE(no_thread_safety_analysis)

#endif
