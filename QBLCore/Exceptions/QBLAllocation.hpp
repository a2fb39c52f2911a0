#ifndef QBLCORE_EXCEPTIONS_QBLALLOCATION_HPP
#define QBLCORE_EXCEPTIONS_QBLALLOCATION_HPP

#include "QBLCore/Exceptions/QBLFileLocation.hpp"
#include "QBLCore/Frame/QBLExport.h"

/// For handlers: rethrows the current exception as a throwable of the library. A throwable gets a
/// trace entry for the place. std::bad_alloc becomes QBLOutOfMemoryError without a text, a
/// QBLStdBridge becomes the throwable that it carries, any other std::exception becomes
/// QBLStdExceptionError with its what(), and anything else becomes QBLUnknownError. A thread's
/// cancellation or exit passes through unchanged.
///
/// Threads: any thread may call it.
[[noreturn]] QBL_API void qblRethrowTranslated(const QBLFileLocation& where,
                                               const char* detail = nullptr);

/// Encloses code that allocates, so that only throwables leave it:
///     QBL_ALLOC_TRY
///         m_pBuffer = new char[size];
///     QBL_ALLOC_CATCH
#define QBL_ALLOC_TRY try {
#define QBL_ALLOC_CATCH                 \
    }                                   \
    catch (...) {                       \
        qblRethrowTranslated(QBL_HERE); \
    }

#endif
