#include "QBLCore/Exceptions/QBLWhat.hpp"

#include <stdexcept>

#include "QBLCore/Exceptions/QBLErrorCode.hpp"
#include "QBLCore/Exceptions/QBLIllegalStateError.hpp"
#include "QBLCore/Exceptions/QBLStdBridge.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "tests/support/Cancellable.hpp"
#include "tests/support/ThrowChecks.hpp"

namespace {

template <class Error>
std::string whatOf(Error error) {
    try {
        throw error;
    } catch (...) {
        EXPECT_EQ(qblWhat(), qblWhat(std::current_exception()));
        return qblWhat();
    }
}

}  // namespace

TEST(QBLWhatTest, DescribesWhateverWasThrown) {
    EXPECT_EQ("", qblWhat());
    EXPECT_EQ("", qblWhat(nullptr));
    EXPECT_EQ("two  lines", whatOf(QBLError(1, "two\r\nlines")));
    const QBLError constant(5, "bad");
    EXPECT_EQ(QBLError(constant).toString(), qblXml(constant));
    EXPECT_EQ("std", whatOf(std::runtime_error("std")));
    EXPECT_EQ("text", whatOf("text"));
    EXPECT_EQ("a b c d e\u00a0\u2027f g\xc2",
              whatOf("a\u0080b\u009fc\u2028d\u2029e\u00a0\u2027f\x7fg\xc2"));
    EXPECT_EQ("", whatOf<const char*>(nullptr));
    EXPECT_EQ("exception of type int", whatOf(42));
    struct Silent : std::exception {
        const char* what() const noexcept override { return nullptr; }
    };
    EXPECT_EQ(0U, whatOf(Silent()).find("exception of type QBLWhatTest"));
}

TEST(QBLStdBridgeTest, CarriesAThrowableThroughStdExceptions) {
    std::string what;
    const auto cross = [&what] {
        try {
            try {
                try {
                    QBL_THROW(QBLIllegalStateError(4, "busy"));
                } catch (...) {
                    qblToStd();
                }
            } catch (const std::exception& e) {
                what = e.what();
                if (const auto* bridge = dynamic_cast<const QBLStdBridge*>(&e)) {
                    QBLStdBridge copy(QBLError(1, "other"));
                    copy = *bridge;
                    copy = *&copy;
                    throw copy;
                }
                throw;
            }
        } catch (...) {
            qblFromStd();
        }
    };
    try {
        cross();
        ADD_FAILURE() << "nothing thrown";
    } catch (QBLIllegalStateError& e) {
        EXPECT_EQ("busy", what);
        EXPECT_EQ(4, e.getErrorCode());
        EXPECT_EQ(
            "QBLIllegalStateError: QBL_RETHROW: \nQBLIllegalStateError: QBL_RETHROW: "
            "\nQBLIllegalStateError: QBL_THROW: \n",
            traceOf(e));
    }
    Cancellable ending([] {
        try {
            pthread_exit(nullptr);
        } catch (...) {
            EXPECT_EQ("", qblWhat());
            qblToStd();
        }
    });
    EXPECT_FALSE(ending.join());
}

TEST(QBLStdBridgeTest, KeepsAThrowableThatIsAStdException) {
    struct Both : std::runtime_error, QBLError {
        Both() : std::runtime_error("std"), QBLError(1, "own") {}
    };
    const auto cross = [] {
        try {
            throw Both();
        } catch (...) {
            qblToStd();
        }
    };
    EXPECT_THROW(cross(), Both);
}

TEST(QBLErrorCodeTest, CodesCompareWithStandardConditions) {
    QBLFmFile file;
    EXPECT_FALSE(file.open("/nowhere/file", QBLFmFile::createmode(0), 1));
    EXPECT_EQ(std::errc::no_such_file_or_directory, qblErrorCode(file));
    std::error_code code = TAVTHREAD_TIMEOUT;
    EXPECT_EQ(std::errc::timed_out, code);
    EXPECT_EQ("the time ran out", code.message());
    EXPECT_FALSE(qblThreadErrorCode(TAVTHREAD_OK));
    EXPECT_EQ("unknown result -7", qblThreadErrorCode(-7).message());
    for (int result : {TAVTHREAD_ERROR, TAVTHREAD_NOTINIT})
        EXPECT_EQ(qblThreadCategory(),
                  qblThreadErrorCode(result).default_error_condition().category())
            << "neither success nor an errno";
}
