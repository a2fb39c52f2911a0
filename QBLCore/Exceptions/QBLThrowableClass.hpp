#ifndef QBLCORE_EXCEPTIONS_QBLTHROWABLECLASS_HPP
#define QBLCORE_EXCEPTIONS_QBLTHROWABLECLASS_HPP

#include "QBLCore/Exceptions/QBLFileLocation.hpp"

/// Defines the three operations that make a throwable class concrete. It goes into the public
/// section of a class that only the program uses:
///
///     class ParseError : public QBLRuntimeError {
///     public:
///         using QBLRuntimeError::QBLRuntimeError;
///         QBL_EXCEPTION_METHODS(ParseError)
///     };
#define QBL_EXCEPTION_METHODS(Class)                                                          \
    QBLThrowable* clone() const override { return new Class(*this); }                         \
    [[noreturn]] void hurl(const QBLFileLocation& where, const char* detail, const char* tag) \
        override {                                                                            \
        addBackTrace(where, detail, tag);                                                     \
        throw Class(*this);                                                                   \
    }                                                                                         \
    const char* getThrowableName() const override { return #Class; }

/// The same for a class that a shared object exports. The first macro goes into the public section,
/// the second into one source file. Because the destructor is defined there, the class has only one
/// set of type information, by which the catch clauses of all shared objects recognise the class.
#define QBL_EXPORTED_THROWABLE(Class, Base)                                                   \
    using Base::Base;                                                                         \
    Class();                                                                                  \
    Class(const Class&);                                                                      \
    Class& operator=(const Class&);                                                           \
    ~Class() override;                                                                        \
    QBLThrowable* clone() const override;                                                     \
    [[noreturn]] void hurl(const QBLFileLocation& where, const char* detail, const char* tag) \
        override;                                                                             \
    const char* getThrowableName() const override;
#define QBL_EXPORTED_THROWABLE_DEFINITION(Class)                                          \
    Class::Class() = default;                                                             \
    Class::Class(const Class&) = default;                                                 \
    Class& Class::operator=(const Class&) = default;                                      \
    Class::~Class() = default;                                                            \
    QBLThrowable* Class::clone() const { return new Class(*this); }                       \
    void Class::hurl(const QBLFileLocation& where, const char* detail, const char* tag) { \
        addBackTrace(where, detail, tag);                                                 \
        throw Class(*this);                                                               \
    }                                                                                     \
    const char* Class::getThrowableName() const { return #Class; }

#endif
