#ifndef QBLCORE_THREADS_SHARED_QBLLAYERRESULT_HPP
#define QBLCORE_THREADS_SHARED_QBLLAYERRESULT_HPP

#include <new>

#include "QBLCore/Exceptions/QBLFileLocation.hpp"
#include "TavThread/TavResult.h"

/// How the lock classes turn results of the thread layer into exceptions. The place goes by value,
/// which costs an operation that succeeds nothing.

/// Throws an error with a text, which is left out with the trace where there is no memory for it:
/// the class of the error is what callers rely on.
template <class Error>
[[noreturn]] void qblThrow(const QBLFileLocation& where, const char* text) {
    try {
        Error(0, text).hurl(where, nullptr, "QBL_THROW");
    } catch (const std::bad_alloc&) {
    }
    throw Error(0, nullptr);
}

/// Throws QBLThreadResourceError with the text of the operation that failed.
[[noreturn]] void qblThrowThreadResource(QBLFileLocation where, const char* text);
/// Throws QBLOutOfMemoryError with the text of the operation that failed.
[[noreturn]] void qblThrowOutOfMemory(QBLFileLocation where, const char* text);

inline void settle(int result, QBLFileLocation where, const char* text) {
    if (__builtin_expect(result != TAVTHREAD_OK, 0)) qblThrowThreadResource(where, text);
}

/// For constructors of the classes that have a text for exhausted memory.
inline void settleCreate(int result, QBLFileLocation where, const char* text,
                         const char* noMemoryText) {
    if (result == TAVTHREAD_NOMEM) qblThrowOutOfMemory(where, noMemoryText);
    settle(result, where, text);
}

/// For try operations: false when the object was taken.
inline bool settleTry(int result, QBLFileLocation where, const char* text) {
    if (result == TAVTHREAD_BUSY) return false;
    settle(result, where, text);
    return true;
}

/// For timed operations: false when the time ran out.
inline bool settleTimed(int result, QBLFileLocation where, const char* text) {
    if (result == TAVTHREAD_TIMEOUT) return false;
    settle(result, where, text);
    return true;
}

/// A timeout as the layer takes it. Where long has 64 bits, a time too long for the layer
/// becomes its longest, never a short one.
inline unsigned int layerTimeout(unsigned long ms) {
    if (ms == ~0UL || ms == TAVTHREAD_INFINITE) return TAVTHREAD_INFINITE;
    return ms < TAVTHREAD_INFINITE ? static_cast<unsigned int>(ms) : TAVTHREAD_INFINITE - 1;
}

#endif
