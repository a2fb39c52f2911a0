#ifndef QBLCORE_EXCEPTIONS_QBLDEFERREDTHROWABLE_HPP
#define QBLCORE_EXCEPTIONS_QBLDEFERREDTHROWABLE_HPP

#include "QBLCore/Exceptions/QBLFileLocation.hpp"
#include "QBLCore/Frame/QBLExport.h"

class QBLThrowable;

/// Holds a copy of a throwable, so that an error caught in one place can be thrown again in another
/// place or on another thread.
///
/// Threads: not synchronised; hand the object over under a lock or after joining the other thread.
///
///     catch (QBLThrowable& e) { error.set(e); }     // on the worker
///     error.check(QBL_HERE, nullptr, "QBL_THROW");  // on the thread that joined it
class QBL_API QBLDeferredThrowable {
public:
    /// Makes an object that holds no throwable.
    QBLDeferredThrowable();
    explicit QBLDeferredThrowable(const QBLThrowable& error);
    QBLDeferredThrowable(const QBLDeferredThrowable& other);
    QBLDeferredThrowable& operator=(const QBLDeferredThrowable& other);
    QBLDeferredThrowable& operator=(const QBLThrowable& error);
    virtual ~QBLDeferredThrowable();

    /// Replaces the held throwable by a copy of error, which may be the held throwable itself.
    void set(const QBLThrowable& error);
    /// Throws a copy of the held throwable with its own class and a trace entry for the place. Does
    /// nothing if no throwable is held. The held throwable keeps the entry, so a second check()
    /// shows both places.
    void check(const QBLFileLocation& where, const char* detail, const char* tag);
    /// Returns the held throwable without throwing it; null if no throwable is held. The throwable
    /// is valid until this object holds another one or none.
    const QBLThrowable* get() const noexcept { return held; }
    void clear();

private:
    void hold(QBLThrowable* error);

    QBLThrowable* held;  // owned; null when empty
};

#endif
