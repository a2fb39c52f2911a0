#ifndef QBLCORE_TYPES_INTERNAL_QBLBYTEBUFFERALLOC_HPP
#define QBLCORE_TYPES_INTERNAL_QBLBYTEBUFFERALLOC_HPP

#include <exception>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"

/// QBL_ALLOC_TRY and QBL_ALLOC_CATCH for the byte buffer. A replaced operator new may throw an
/// object that is neither a QBLThrowable nor a std::exception. Such an object is passed on
/// unchanged.
#define QBL_BUFFER_ALLOC_TRY try {
#define QBL_BUFFER_ALLOC_CATCH          \
    }                                   \
    catch (const QBLThrowable&) {       \
        qblRethrowTranslated(QBL_HERE); \
    }                                   \
    catch (const std::exception&) {     \
        qblRethrowTranslated(QBL_HERE); \
    }

#endif
