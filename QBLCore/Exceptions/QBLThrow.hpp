#ifndef QBLCORE_EXCEPTIONS_QBLTHROW_HPP
#define QBLCORE_EXCEPTIONS_QBLTHROW_HPP

#include <exception>
#include <type_traits>
#include <utility>

#include "QBLCore/Exceptions/QBLFileLocation.hpp"
#include "QBLCore/Frame/QBLExport.h"

/// Throws the given throwable and adds this place to its back-trace:
///     QBL_THROW(QBLIllegalStateError(0, "QBLThing::stop: not started"));
/// If the argument is a variable or a reference, the thrown object has the dynamic class of the
/// throwable. If the argument is a temporary, the thrown object has the class of the expression. Do
/// not pass std::move() of a reference to a base class, because the thrown object then has this
/// base class.
///
/// If there is no memory to make the throwable, std::bad_alloc is thrown instead. Therefore any
/// operation may throw std::bad_alloc in place of the throwables that its comment names.
///
/// Threads: any thread may use the macros and functions of this header.
#ifndef __clang__
#define QBL_THROW(...) QBLThrown{(__VA_ARGS__)}.hurl(QBL_HERE, nullptr, "QBL_THROW")
#else
// In a macro with arguments, __LINE__ of clang is the line of the closing parenthesis. In one
// without, it is the line of the macro's name, as with g++.
#define QBL_THROW QBLThrowPlace{QBL_HERE}->*QBL_THROWN
#define QBL_THROWN(...) \
    QBLThrown { (__VA_ARGS__) }
#endif
/// QBL_THROW with a detail in the trace entry, usually the operation's name.
#define QBL_THROW_NAMED(error, detail) QBLThrown{(error)}.hurl(QBL_HERE, detail, "QBL_THROW")

/// For a handler that caught a throwable by reference. Adds this place to the back-trace of the
/// throwable and rethrows it:
///     catch (QBLThrowable& e) { QBL_RETHROW(e); }
#define QBL_RETHROW(error) QBL_RETHROW_NAMED(error, nullptr)
#define QBL_RETHROW_NAMED(error, detail)                       \
    do {                                                       \
        (error).addBackTrace(QBL_HERE, detail, "QBL_RETHROW"); \
        throw;                                                 \
    } while (false)

/// Throws a QBLAssertError if the condition is false. The error's text is the statement itself;
/// macro names in it are not expanded. The assertion is never compiled out. The condition may
/// contain commas. The compiler rejects a string literal, alone or after the last comma, because a
/// literal is always true.
#define QBL_ASSERT(...)                                                                      \
    ((__VA_ARGS__) ? static_cast<void>(sizeof(QBLAssertHolds<!qblEndsInText(#__VA_ARGS__)>)) \
                   : qblAssertFailed(QBL_HERE, "QBL_ASSERT(" #__VA_ARGS__ ");"))
/// QBL_ASSERT with an explanation, a string literal, after the condition. The explanation is part
/// of the statement's text.
#define QBL_ASSERT_NAMED(...)                     \
    (qblHolds(__VA_ARGS__) ? static_cast<void>(0) \
                           : qblAssertFailed(QBL_HERE, "QBL_ASSERT_NAMED(" #__VA_ARGS__ ");"))

/// Returns true if a condition consists of string literals, or ends with a comma and string
/// literals. The function parses the source text of the condition, because the type of a condition
/// with a lambda is not available.
constexpr bool qblEndsInText(const char* source) {
    const char* at = source;
    while (*at != '\0') ++at;
    bool isText = false;
    while (at != source && at[-1] == '"') {
        // Goes back to the quote that begins the literal. Quotes inside the literal follow a
        // backslash.
        for (--at; at != source && (at[-1] != '"' || (at - 1 != source && at[-2] == '\\'));) --at;
        if (at == source) return false;
        for (--at; at != source && at[-1] == ' ';) --at;
        isText = true;
    }
    return isText && (at == source || at[-1] == ',');
}

/// Rejects a text as the condition of a QBL_ASSERT.
template <bool kIsCondition>
struct QBLAssertHolds {
    static_assert(kIsCondition, "a text always holds: QBL_ASSERT_NAMED takes it after a condition");
};

/// The condition of a QBL_ASSERT_NAMED.
template <class Condition>
constexpr bool qblHolds(const Condition& condition, const char*) {
    return static_cast<bool>(condition);
}

/// Memory for a throwable. Does not destroy the throwable.
template <class Error>
union QBLThrownValue {
    Error error;
    ~QBLThrownValue() {}
};

/// The operand of QBL_THROW if it is a temporary. The operand is constructed in this object and
/// destroyed before the throw, so the throwing function needs no cleanup. With a cleanup, the
/// runtime stops at this function and then starts to unwind again, which takes longer than making
/// and copying the throwable.
template <class Error>
struct QBLThrown {
    QBLThrownValue<Error> value;

    /// Does what Error::hurl() does, if a macro of QBLThrowableClass.hpp defines Error::hurl().
    /// Otherwise calls Error::hurl().
    [[noreturn, gnu::always_inline]] inline void hurl(const QBLFileLocation& where,
                                                      const char* detail, const char* tag) {
        if constexpr (std::is_same_v<Error, typename Error::QBLHurledAs>) {
            value.error.addBackTrace(where, detail, tag);
            throw take(value.error);
        } else {
            const Destroyed destroyed{value.error};
            value.error.hurl(where, detail, tag);
            std::terminate();
        }
    }

private:
    struct Destroyed {
        Error& error;
        ~Destroyed() { error.Error::~Error(); }
    };
    static Error take(Error& error) noexcept(std::is_nothrow_move_constructible_v<Error>) {
        const Destroyed destroyed{error};
        return std::move(error);
    }
};

/// The operand of QBL_THROW if it is not a temporary.
template <class Error>
struct QBLThrown<Error&> {
    Error& error;

    [[noreturn, gnu::always_inline]] inline void hurl(const QBLFileLocation& where,
                                                      const char* detail, const char* tag) {
        error.hurl(where, detail, tag);
        std::terminate();  // not every hurl() is declared as [[noreturn]]
    }
};

template <class Error>
QBLThrown(Error&&) -> QBLThrown<Error>;

#ifdef __clang__
/// The place of a QBL_THROW.
struct QBLThrowPlace {
    QBLFileLocation where;

    template <class Error>
    [[noreturn, gnu::always_inline]] inline void operator->*(QBLThrown<Error>&& thrown) const {
        thrown.hurl(where, nullptr, "QBL_THROW");
    }
};
#endif

/// Throws a QBLAssertError with error number 0, the given text and place.
[[noreturn]] QBL_API void qblAssertFailed(const QBLFileLocation& where, const char* statement);

#endif
