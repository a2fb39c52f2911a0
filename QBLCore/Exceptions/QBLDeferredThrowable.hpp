#ifndef QBLCORE_EXCEPTIONS_QBLDEFERREDTHROWABLE_HPP
#define QBLCORE_EXCEPTIONS_QBLDEFERREDTHROWABLE_HPP

#include "QBLCore/Exceptions/QBLFileLocation.hpp"
#include "QBLCore/Frame/QBLExport.h"

class QBLThrowable;

/// Holds a copy of a throwable, so that an error caught in one place can be raised in another
/// or on another thread.
///
/// Threads: not synchronised; hand it over under a lock or after joining.
///
///     catch (QBLThrowable& e) { error.set(e); }     // on the worker
///     error.check(QBL_HERE, nullptr, "QBL_THROW");  // on the thread that joined it
class QBL_API QBLDeferredThrowable {
public:
    /// Empty: holds nothing.
    QBLDeferredThrowable();
    explicit QBLDeferredThrowable(const QBLThrowable& error);
    QBLDeferredThrowable(const QBLDeferredThrowable& other);
    QBLDeferredThrowable& operator=(const QBLDeferredThrowable& other);
    QBLDeferredThrowable& operator=(const QBLThrowable& error);
    virtual ~QBLDeferredThrowable();

    /// Holds a copy of error instead of what it held; error may be the one that it holds.
    void set(const QBLThrowable& error);
    /// Throws a copy of what is held, as its own class, with a trace entry for the place. The
    /// entry also stays in the one that is held, so a second check shows both places.
    void check(const QBLFileLocation& where, const char* detail, const char* tag);
    void clear();

private:
    void hold(QBLThrowable* error);

    QBLThrowable* held;  // owned; null when empty
};

#endif
