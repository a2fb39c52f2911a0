#include "QBLCore/Exceptions/QBLThrowable.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <regex>
#include <stdexcept>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/Exceptions/QBLAssertError.hpp"
#include "QBLCore/Exceptions/QBLIllegalArgumentError.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLIndexOutOfBoundsError.hpp"
#include "QBLCore/Exceptions/QBLOutOfMemoryError.hpp"
#include "QBLCore/Exceptions/QBLStdExceptionError.hpp"
#include "QBLCore/Exceptions/QBLThreadResourceError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLUnknownError.hpp"
#include "QBLCore/Exceptions/QBLUnsupportedOperationError.hpp"
#include "tests/support/ThrowChecks.hpp"

namespace {

struct OwnError : QBLRuntimeError {
    using QBLRuntimeError::QBLRuntimeError;
    QBL_EXCEPTION_METHODS(OwnError)
};

/// An error class that defines hurl() itself, without the macro.
struct NamedError : OwnError {
    using OwnError::OwnError;
    void hurl(const QBLFileLocation& where, const char*, const char* tag) override {
        addBackTrace(where, "own hurl", tag);
        throw NamedError(*this);
    }
};

template <class Thrown, class Caught>
bool caughtAs() {
    Thrown lvalue(1, "x");
    QBLThrowable& root = lvalue;
    try {
        QBL_THROW(root);
    } catch (Caught& e) {
        return dynamic_cast<Thrown*>(&e) != nullptr;
    } catch (...) {
    }
    return false;
}

}  // namespace

TEST(QBLThrowableTest, RendersAsXmlWithoutEscaping) {
    const char* none = nullptr;
    EXPECT_STREQ(
        "<Exception Name=\"QBLError\" Error=\"5\" Severity=\"Fatal\"><Messages><MessageText>bad"
        "</MessageText></Messages></Exception>",
        QBLError(5, "bad").toString());
    for (const QBLError& empty : {QBLError(0, none), QBLError(none, none)})
        EXPECT_STREQ("<Exception Name=\"QBLError\" Error=\"0\" Severity=\"Fatal\"></Exception>",
                     QBLError(empty).toString());
    EXPECT_STREQ(
        "<Exception Name=\"OwnError\" Error=\"E<%s>\" Severity=\"Warning\"><Messages>"
        "<MessageText>100%n & <more></MessageText></Messages></Exception>",
        OwnError(QBLSeverityWarning, "E<%s>", "100%n & <more>").toString());
    QBLError traced(QBLSeverity(9), -7L, "");
    traced.addBackTrace(QBLFileLocation(nullptr, INT_MIN), "detail", "TAG");
    traced.addBackTrace(QBLFileLocation("f.cpp", 3), "", nullptr);
    EXPECT_STREQ(
        "<Exception Name=\"QBLError\" Error=\"-7\" Severity=\"Unknown\"><Messages><MessageText>"
        "</MessageText></Messages><TraceInfo><Trace Text=\"f.cpp(3): QBLError: \"/>"
        "<Trace Text=\"<NULL FILE>(-2147483648): QBLError: TAG: detail\"/></TraceInfo></Exception>",
        traced.toString());
    traced.clear();
    EXPECT_STREQ("<Exception Name=\"QBLError\" Error=\"-7\" Severity=\"Unknown\"></Exception>",
                 traced.toString());
}

TEST(QBLThrowableTest, EveryThrowAndRethrowAddsAnEntryNewestFirst) {
    try {
        try {
            QBL_THROW_NAMED(QBLIllegalStateError(3, "text"), "Thing::start");
        } catch (QBLThrowable& e) {
            QBL_RETHROW(e);
        }
    } catch (QBLIllegalStateError& e) {
        EXPECT_EQ(
            "QBLIllegalStateError: QBL_RETHROW: \n"
            "QBLIllegalStateError: QBL_THROW: Thing::start\n",
            traceOf(e));
        EXPECT_TRUE(std::regex_match(
            e.getBackTrace()[0], std::regex("tests/Exceptions/QBLThrowableTest.cpp\\(\\d+\\): .*")))
            << "the path is not relative to the root of the tree: " << e.getBackTrace()[0];
    }
}

TEST(QBLThrowableTest, AnAssignedErrorHasTheTextCodeAndTraceOfTheOther) {
    QBLError from(QBLSeverityWarning, 5, "new"), to(1, "old");
    from.addBackTrace(QBLFileLocation("f.cpp", 3), "detail", nullptr);
    to.addBackTrace(QBLFileLocation("g.cpp", 4), "a", nullptr);
    to.addBackTrace(QBLFileLocation("g.cpp", 5), "b", nullptr);
    to = from;
    EXPECT_STREQ(from.toString(), to.toString());
    EXPECT_EQ(5, to.getErrorCode());
    const QBLError& self = to;
    to = self;
    EXPECT_STREQ(from.toString(), to.toString()) << "assigned to itself";
    to.clear();
    EXPECT_TRUE(to.getBackTrace().empty());
    EXPECT_EQ(1U, from.getBackTrace().size());
    to.addBackTrace(QBLFileLocation("g.cpp", 6), "c", nullptr);
    EXPECT_EQ(1U, to.getBackTrace().size()) << "usable after clear()";
}

TEST(QBLThrowableTest, ThrowsBracesAndByAnOwnHurl) {
    QBL_EXPECT_THROW(QBL_THROW(QBLError{1, "braces"}), QBLError, "braces", 1);
    try {
        QBL_THROW(NamedError(1, "x"));
    } catch (NamedError& e) {
        EXPECT_EQ("OwnError: QBL_THROW: own hurl\n", traceOf(e));
    }
}

TEST(QBLThrowableTest, DropsAnEntryLongerThanTheAddressSpace) {
    if (sizeof(void*) > 4) GTEST_SKIP() << "no text exceeds a 64-bit address space";
    constexpr std::size_t kPiece = 16U << 20, kPieces = 90;  // maps the same 16 MiB 90 times
    const int memory = memfd_create("text", MFD_CLOEXEC);
    ASSERT_EQ(0, ftruncate(memory, kPiece));
    const int flags = MAP_SHARED | MAP_FIXED, access = PROT_READ | PROT_WRITE;
    void* const space =
        mmap(nullptr, kPiece * kPieces, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (space == MAP_FAILED) GTEST_SKIP() << "not enough free address space for the text";
    char* const text = static_cast<char*>(space);
    for (std::size_t i = 0; i < kPieces - 1; ++i)
        ASSERT_NE(MAP_FAILED, mmap(text + i * kPiece, kPiece, access, flags, memory, 0));
    std::memset(text, 'x', kPiece);
    ASSERT_NE(MAP_FAILED, mmap(text + (kPieces - 1) * kPiece, kPiece, access,
                               MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0));
    QBLError error(1, "e");
    error.addBackTrace(QBLFileLocation(text, 1), text, text);
    EXPECT_TRUE(error.getBackTrace().empty());
    munmap(space, kPiece * kPieces);
    close(memory);
}

TEST(QBLThrowableTest, AssertionsThrowTheirOwnStatement) {
    const char* localeID = NULL;
    QBL_EXPECT_THROW(QBL_ASSERT(localeID != NULL), QBLAssertError, "QBL_ASSERT(localeID != NULL);");
    QBL_EXPECT_THROW(QBL_ASSERT(std::is_same<int, long>::value), QBLAssertError,
                     "QBL_ASSERT(std::is_same<int, long>::value);");
    QBL_EXPECT_THROW(QBL_ASSERT_NAMED((NULL != localeID), "[Here] It is NULL."), QBLAssertError,
                     "QBL_ASSERT_NAMED((NULL != localeID), \"[Here] It is NULL.\");");
    int evaluated = 0;
    QBL_ASSERT(++evaluated == 1);
    static_assert(qblEndsInText(R"("a\" b")") && !qblEndsInText(R"("a" != b || b == "c")"));
    static_assert(qblEndsInText(R"(p != nullptr, "text")") && qblEndsInText(R"(f(a, b), "x" "y")"));
    static_assert(!qblEndsInText(R"(f(p, "text"))") && !qblEndsInText(R"(is_same<A, B>::value)") &&
                  !qblEndsInText(R"(a[0] == ',' && n > 1'000)") &&
                  qblEndsInText(R"(c == '"', "x")"));
    EXPECT_EQ(1, evaluated);
}

TEST(QBLThrowableTest, IsCaughtByEachOfItsBases) {
    EXPECT_TRUE((caughtAs<QBLAssertError, QBLRuntimeError>()));
    EXPECT_TRUE((caughtAs<QBLIllegalArgumentError, QBLRuntimeError>()));
    EXPECT_TRUE((caughtAs<QBLIllegalStateError, QBLError>()));
    EXPECT_TRUE((caughtAs<QBLIndexOutOfBoundsError, QBLRuntimeError>()));
    EXPECT_TRUE((caughtAs<QBLOutOfMemoryError, QBLSystemError>()));
    EXPECT_TRUE((caughtAs<QBLThreadResourceError, QBLUnexpectedError>()));
    EXPECT_TRUE((caughtAs<QBLUnsupportedOperationError, QBLSystemError>()));
    EXPECT_TRUE((caughtAs<QBLStdExceptionError, QBLUnexpectedError>()));
    EXPECT_TRUE((caughtAs<QBLUnknownError, QBLUnexpectedError>()));
    EXPECT_TRUE((caughtAs<OwnError, QBLThrowable>()));
    EXPECT_TRUE((caughtAs<NamedError, OwnError>()));
    EXPECT_FALSE((caughtAs<QBLRuntimeError, QBLUnexpectedError>()));
}

TEST(QBLThrowableTest, CopiesShareNothingAndMovesTakeAll) {
    QBLError original("CODE", "text");
    original.addBackTrace(QBL_HERE, "one", nullptr);
    original.addBackTrace(QBL_HERE, "two", nullptr);
    original.toString();
    QBLError copy(original);
    QBLError moved(std::move(original));
    for (QBLError* e : {&copy, &moved}) {
        EXPECT_STREQ("CODE", e->getErrorCodeString());
        EXPECT_STREQ("text", e->getMessage());
        EXPECT_EQ("QBLError: two\nQBLError: one\n", traceOf(*e));
        EXPECT_EQ(0, e->getErrorCode());
    }
    // NOLINTBEGIN(bugprone-use-after-move): shows what a move leaves
    EXPECT_TRUE(original.getErrorCodeString() == nullptr && original.getMessage() == nullptr);
    EXPECT_TRUE(original.getBackTrace().empty());
    // NOLINTEND(bugprone-use-after-move)
}

TEST(QBLThrowableTest, MovesAndCopiesBackTraces) {
    QBLError from(1, "a"), to(2, "b");
    from.addBackTrace(QBL_HERE, "1", nullptr);
    from.addBackTrace(QBL_HERE, "2", nullptr);
    to.addBackTrace(QBL_HERE, "3", nullptr);
    from.transferBackTrace(from);
    to.transferBackTrace(from);
    EXPECT_EQ("QBLError: 3\nQBLError: 2\nQBLError: 1\n", traceOf(to));
    EXPECT_TRUE(from.getBackTrace().empty());
    to.copyBackTrace(to.getBackTrace());
    EXPECT_EQ(6U, to.getBackTrace().size()) << "copying its own list copies each entry once";
}

TEST(QBLThrowableTest, TranslatesForeignExceptions) {
    const auto translate = [](auto error) {
        QBL_ALLOC_TRY
        throw error;
        QBL_ALLOC_CATCH
    };
    QBL_EXPECT_THROW(translate(std::bad_alloc()), QBLOutOfMemoryError, nullptr);
    QBL_EXPECT_THROW(translate(std::runtime_error("what")), QBLStdExceptionError, "what");
    QBL_EXPECT_THROW(translate(42), QBLUnknownError, nullptr);
    QBL_EXPECT_THROW(translate(OwnError(1, "own")), OwnError, "own", 1);
}
