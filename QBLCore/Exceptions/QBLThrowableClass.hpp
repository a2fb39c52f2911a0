#ifndef QBLCORE_EXCEPTIONS_QBLTHROWABLECLASS_HPP
#define QBLCORE_EXCEPTIONS_QBLTHROWABLECLASS_HPP

#include <type_traits>

#include "QBLCore/Exceptions/QBLFileLocation.hpp"

/// Defines the three operations that make a throwable class concrete. The macro goes into the
/// public section of a class that only the program uses:
///
///     class ParseError : public QBLRuntimeError {
///     public:
///         using QBLRuntimeError::QBLRuntimeError;
///         QBL_EXCEPTION_METHODS(ParseError)
///     };
#define QBL_EXCEPTION_METHODS(Class)                                                          \
    typedef Class QBLHurledAs;                                                                \
    QBLThrowable* clone() const override { return new Class(*this); }                         \
    [[noreturn]] void hurl(const QBLFileLocation& where, const char* detail, const char* tag) \
        override {                                                                            \
        addBackTrace(where, detail, tag);                                                     \
        throw Class(*this);                                                                   \
    }                                                                                         \
    const char* getThrowableName() const override { return #Class; }

/// These two macros do the same for a class that a shared object exports. The first macro goes into
/// the public section, the second into one source file. This source file defines the destructor, so
/// the class has only one set of type information, by which the catch clauses of all shared objects
/// recognise the class. The move constructor is declared as noexcept if the class has no
/// fields of its own and the base's move constructor is noexcept. The macros do not export the
/// class, so declare it with default visibility:
///
///     class [[gnu::visibility("default")]] ParseError : public QBLRuntimeError {
///     public:
///         QBL_EXPORTED_THROWABLE(ParseError, QBLRuntimeError)
///     };
#define QBL_EXPORTED_THROWABLE(Class, Base)                                                   \
    typedef Class QBLHurledAs;                                                                \
    using Base::Base;                                                                         \
    Class();                                                                                  \
    Class(const Class&);                                                                      \
    Class(Class&&) noexcept(                                                                  \
        sizeof(Class) == sizeof(Base) &&                                                      \
        (std::is_same_v<Base, QBLThrowable> || std::is_nothrow_move_constructible_v<Base>));  \
    Class& operator=(const Class&);                                                           \
    ~Class() override;                                                                        \
    QBLThrowable* clone() const override;                                                     \
    [[noreturn]] void hurl(const QBLFileLocation& where, const char* detail, const char* tag) \
        override;                                                                             \
    const char* getThrowableName() const override;
#define QBL_EXPORTED_THROWABLE_DEFINITION(Class)                                           \
    Class::Class() = default;                                                              \
    Class::Class(const Class&) = default;                                                  \
    Class::Class(Class&&) noexcept(std::is_nothrow_move_constructible_v<Class>) = default; \
    Class& Class::operator=(const Class&) = default;                                       \
    Class::~Class() = default;                                                             \
    QBLThrowable* Class::clone() const { return new Class(*this); }                        \
    void Class::hurl(const QBLFileLocation& where, const char* detail, const char* tag) {  \
        addBackTrace(where, detail, tag);                                                  \
        throw Class(*this);                                                                \
    }                                                                                      \
    const char* Class::getThrowableName() const { return #Class; }

#endif
