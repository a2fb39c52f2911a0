#ifndef QBLCORE_TYPES_INTERNAL_QBLBYTEBUFFERALLOC_HPP
#define QBLCORE_TYPES_INTERNAL_QBLBYTEBUFFERALLOC_HPP

#include <exception>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"

/// QBL_ALLOC_TRY and QBL_ALLOC_CATCH of the byte buffer. What a replaced operator new throws that
/// is neither a throwable nor a std::exception is the program's own and leaves untouched.
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
