#ifndef QBLCORE_THREADS_SHARED_QBLLAYERRESULT_HPP
#define QBLCORE_THREADS_SHARED_QBLLAYERRESULT_HPP

#include <new>

#include "QBLCore/Exceptions/QBLFileLocation.hpp"
#include "TavThread/TavResult.h"

/// The lock classes use these functions to turn results of the thread layer into exceptions. The
/// place is passed by value, so that it costs nothing if the operation succeeds.

/// Throws an error with a text. Omits the text and the trace if there is no memory for them,
/// because callers rely on the class of the error.
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

/// For constructors of classes that have a text for exhausted memory.
inline void settleCreate(int result, QBLFileLocation where, const char* text,
                         const char* noMemoryText) {
    if (result == TAVTHREAD_NOMEM) qblThrowOutOfMemory(where, noMemoryText);
    settle(result, where, text);
}

/// For try operations. Returns false if the object is busy.
inline bool settleTry(int result, QBLFileLocation where, const char* text) {
    if (result == TAVTHREAD_BUSY) return false;
    settle(result, where, text);
    return true;
}

/// For timed operations. Returns false if the time ran out.
inline bool settleTimed(int result, QBLFileLocation where, const char* text) {
    if (result == TAVTHREAD_TIMEOUT) return false;
    settle(result, where, text);
    return true;
}

/// Converts a timeout for the layer. If long has 64 bits, a time that is too long for the layer
/// becomes the longest time of the layer.
inline unsigned int layerTimeout(unsigned long ms) {
    if (ms == ~0UL || ms == TAVTHREAD_INFINITE) return TAVTHREAD_INFINITE;
    return ms < TAVTHREAD_INFINITE ? static_cast<unsigned int>(ms) : TAVTHREAD_INFINITE - 1;
}

#endif
