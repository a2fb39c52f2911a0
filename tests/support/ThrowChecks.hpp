#ifndef TESTS_SUPPORT_THROWCHECKS_HPP
#define TESTS_SUPPORT_THROWCHECKS_HPP

#include <gtest/gtest.h>

#include <string>

#include "QBLCore/Exceptions/QBLThrowable.hpp"

/// What QBL_EXPECT_THROW expects of an error.
struct ExpectedError {
    const char* text;
    long code = 0;
};

/// Expects a statement to throw exactly Class with exactly this message text (null: no text), and
/// with the error code that follows the text, or 0.
#define QBL_EXPECT_THROW(statement, Class, ...)                                         \
    do {                                                                                \
        bool qblThrown = false;                                                         \
        try {                                                                           \
            static_cast<void>(statement);                                               \
        } catch (QBLThrowable & qblError) {                                             \
            qblThrown = true;                                                           \
            EXPECT_STREQ(#Class, qblError.getThrowableName());                          \
            const ExpectedError qblExpected{__VA_ARGS__};                               \
            EXPECT_STREQ(qblExpected.text, qblError.getMessage());                      \
            EXPECT_EQ(qblExpected.code, qblError.getErrorCode());                       \
            EXPECT_FALSE(qblError.getBackTrace().empty()) << "not thrown by QBL_THROW"; \
        }                                                                               \
        EXPECT_TRUE(qblThrown) << #statement " threw no QBLThrowable";                  \
    } while (false)

/// Returns the back-trace as text, one entry per line, without file names and line numbers.
inline std::string traceOf(const QBLThrowable& error) {
    std::string out;
    for (const char* entry : error.getBackTrace()) {
        const std::string text(entry);
        const std::size_t place = text.find("): ");
        out += (place != std::string::npos ? text.substr(place + 3) : "no place in " + text) + "\n";
    }
    return out;
}

#endif
