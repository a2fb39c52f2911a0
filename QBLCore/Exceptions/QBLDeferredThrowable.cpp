#include "QBLCore/Exceptions/QBLDeferredThrowable.hpp"

#include "QBLCore/Exceptions/QBLThrowable.hpp"

QBLDeferredThrowable::QBLDeferredThrowable() : held(nullptr) {}

QBLDeferredThrowable::QBLDeferredThrowable(const QBLThrowable& error) : held(error.clone()) {}

QBLDeferredThrowable::QBLDeferredThrowable(const QBLDeferredThrowable& other)
    : held(other.held != nullptr ? other.held->clone() : nullptr) {}

QBLDeferredThrowable& QBLDeferredThrowable::operator=(const QBLDeferredThrowable& other) {
    if (this != &other) hold(other.held != nullptr ? other.held->clone() : nullptr);
    return *this;
}

QBLDeferredThrowable& QBLDeferredThrowable::operator=(const QBLThrowable& error) {
    set(error);
    return *this;
}

QBLDeferredThrowable::~QBLDeferredThrowable() { delete held; }

void QBLDeferredThrowable::set(const QBLThrowable& error) { hold(error.clone()); }

void QBLDeferredThrowable::check(const QBLFileLocation& where, const char* detail,
                                 const char* tag) {
    if (held != nullptr) held->hurl(where, detail, tag);
}

void QBLDeferredThrowable::clear() { hold(nullptr); }

// The new throwable is complete before the old one is deleted, because the new throwable may be a
// copy of the old one.
void QBLDeferredThrowable::hold(QBLThrowable* error) {
    delete held;
    held = error;
}
