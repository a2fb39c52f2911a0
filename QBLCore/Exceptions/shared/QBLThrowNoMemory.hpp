#ifndef QBLCORE_EXCEPTIONS_SHARED_QBLTHROWNOMEMORY_HPP
#define QBLCORE_EXCEPTIONS_SHARED_QBLTHROWNOMEMORY_HPP

#include <new>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"

/// Throws QBLOutOfMemoryError with a text, or without the text if there is no memory for it.
/// QBL_THROW would throw std::bad_alloc in that case.
/// @param text  may be null
[[noreturn]] inline void qblThrowNoMemory(const QBLFileLocation& where,
                                          const char* text = nullptr) {
    try {
        QBLOutOfMemoryError(0, text).hurl(where, nullptr, "QBL_THROW");
    } catch (const std::bad_alloc&) {
        qblRethrowTranslated(where);
    }
}

#endif
