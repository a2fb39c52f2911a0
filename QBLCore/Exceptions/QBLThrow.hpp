#ifndef QBLCORE_EXCEPTIONS_QBLTHROW_HPP
#define QBLCORE_EXCEPTIONS_QBLTHROW_HPP

#include "QBLCore/Exceptions/QBLFileLocation.hpp"
#include "QBLCore/Frame/QBLExport.h"

/// Throws a throwable given as an expression; the back-trace gets this place. Where there is no
/// memory to make the throwable, std::bad_alloc leaves instead, of every operation:
///     QBL_THROW(QBLIllegalStateError(0, "QBLThing::stop: not started"));
///
/// Threads: any thread may use what is in this header.
#define QBL_THROW(...) (__VA_ARGS__).hurl(QBL_HERE, nullptr, "QBL_THROW")
/// QBL_THROW with a detail in the trace entry, usually the operation's name.
#define QBL_THROW_NAMED(error, detail) (error).hurl(QBL_HERE, detail, "QBL_THROW")

/// Inside a handler that caught a throwable by reference: notes this place and passes it on:
///     catch (QBLThrowable& e) { QBL_RETHROW(e); }
#define QBL_RETHROW(error) QBL_RETHROW_NAMED(error, nullptr)
#define QBL_RETHROW_NAMED(error, detail)                       \
    do {                                                       \
        (error).addBackTrace(QBL_HERE, detail, "QBL_RETHROW"); \
        throw;                                                 \
    } while (false)

/// Throws a QBLAssertError whose text is the statement itself unless the condition holds.
/// Never compiled out. The condition may contain commas; names are not expanded in the text.
/// A string literal, alone or after the last comma, always holds: the compiler refuses it.
#define QBL_ASSERT(...)                                                                      \
    ((__VA_ARGS__) ? static_cast<void>(sizeof(QBLAssertHolds<!qblEndsInText(#__VA_ARGS__)>)) \
                   : qblAssertFailed(QBL_HERE, "QBL_ASSERT(" #__VA_ARGS__ ");"))
/// QBL_ASSERT with an explanation after the condition, a string literal, as part of the
/// statement's text.
#define QBL_ASSERT_NAMED(...)                     \
    (qblHolds(__VA_ARGS__) ? static_cast<void>(0) \
                           : qblAssertFailed(QBL_HERE, "QBL_ASSERT_NAMED(" #__VA_ARGS__ ");"))

/// Whether the source of a condition ends in string literals that are all of it, or all that
/// follows a comma. The source is read because the type of a condition that contains a lambda
/// cannot be had.
constexpr bool qblEndsInText(const char* source) {
    const char* at = source;
    while (*at != '\0') ++at;
    bool isText = false;
    while (at != source && at[-1] == '"') {
        // Back to the quote that begins the literal: quotes within have a backslash in front.
        for (--at; at != source && (at[-1] != '"' || (at - 1 != source && at[-2] == '\\'));) --at;
        if (at == source) return false;
        for (--at; at != source && at[-1] == ' ';) --at;
        isText = true;
    }
    return isText && (at == source || at[-1] == ',');
}

/// A condition of a QBL_ASSERT that is one.
template <bool kIsCondition>
struct QBLAssertHolds {
    static_assert(kIsCondition, "a text always holds: QBL_ASSERT_NAMED takes it after a condition");
};

/// The condition of a QBL_ASSERT_NAMED.
template <class Condition>
constexpr bool qblHolds(const Condition& condition, const char*) {
    return static_cast<bool>(condition);
}

/// Throws a QBLAssertError with error number 0, the given text and place.
[[noreturn]] QBL_API void qblAssertFailed(const QBLFileLocation& where, const char* statement);

#endif
