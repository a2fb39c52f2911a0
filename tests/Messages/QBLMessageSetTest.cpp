#include "QBLCore/Messages/QBLMessageSet.hpp"

#include <memory>

#include "QBLCore/Exceptions/QBLException.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Messages/QBLMessageString.hpp"
#include "QBLCore/Messages/QBLMessageText.hpp"
#include "tests/support/ThrowChecks.hpp"

namespace {

struct DiskError : QBLException {
    using QBLException::QBLException;
    QBL_EXCEPTION_METHODS(DiskError)
};

}  // namespace

TEST(QBLMessageSetTest, OwnsItsMessagesAndKeepsTheirOrder) {
    QBLMessageSet set;
    EXPECT_EQ(QBLSeverityError, set.getSeverity());
    QBLMessageString text(QBLSeverityWarning, "b");
    set << text << QBLMessageString("c");
    text = QBLMessageString("changed");
    set.addMessageFront(QBLMessageString(QBLSeverityFatal, "a"));
    set.addMessage(nullptr);
    set.increaseNesting();
    EXPECT_EQ("abc", qblText(set));
    EXPECT_EQ(QBLSeverityFatal, set.getSeverity());
    QBLMessageSet copy(set), other;
    other << QBLMessageString("d");
    other.transferMessages(set);
    other.transferMessages(other);
    EXPECT_EQ("dabc", qblText(other));
    EXPECT_EQ(0U, set.getMessageCount());
    EXPECT_EQ(nullptr, set.getMessageN(0));
    EXPECT_EQ("abc", qblText(copy));
    EXPECT_EQ(1UL, copy.getNesting());
    const QBLMessageSet& itself = copy;
    copy = itself;
    copy.clear();
    EXPECT_EQ(0UL, copy.getNesting());
    I18NString nothing;
    copy.toString("en", nullptr, nothing, 0);
    EXPECT_TRUE(nothing.empty());
}

TEST(QBLExceptionTest, CarriesItsMessagesAndShowsThemAsXml) {
    try {
        try {
            QBL_THROW(DiskError(7) << QBLMessageString("one") << QBLMessageString(" two"));
        } catch (QBLThrowable& error) {
            QBL_RETHROW(error);
        }
    } catch (QBLException& error) {
        EXPECT_EQ(QBLSeverityError, error.getSeverity());
        const QBLException& constant = error;
        EXPECT_STREQ("one two", constant.getMessage());
        const std::string first = error.toString();
        EXPECT_EQ(0U, first.find("<Exception Name=\"DiskError\" Error=\"7\" Severity=\"Error\">"
                                 "<Messages><Message Name=\"QBLMessageString\""));
        EXPECT_NE(std::string::npos, first.find("</Messages><TraceInfo><Trace Text=\""));
        EXPECT_NE(std::string::npos, first.find(": DiskError: QBL_THROW: \" /></TraceInfo>"));
        error << QBLMessageString("later");
        EXPECT_EQ(first, error.toString()) << "toString() keeps its first result";
        const DiskError copy(dynamic_cast<DiskError&>(error));
        EXPECT_EQ(3U, copy.getMessageCount());
        EXPECT_EQ(first, std::unique_ptr<QBLThrowable>(copy.clone())->toString());
        error.clear();
        EXPECT_EQ(0U, error.getMessageCount());
        EXPECT_STREQ("", error.getMessage());
        EXPECT_STREQ("<Exception Name=\"DiskError\" Error=\"7\" Severity=\"Error\"></Exception>",
                     error.toString());
    }
    I18NString xml;
    DiskError(QBLSeverityWarning, static_cast<const char*>(nullptr)).toString("de", "en", xml, 1);
    EXPECT_EQ("<Exception Name=\"DiskError\" Error=\"0\" Severity=\"Warning\"></Exception>",
              xml.toUtf8());
}
