#include "QBLCore/Utility/QBLMiniLogger.hpp"

#include <gtest/gtest.h>

#include <regex>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "tests/support/TempTree.hpp"

TEST(QBLMiniLoggerTest, AppendsRecordsOfOneFormOrNothing) {
    TempTree tree;
    QBLFmDir::setEffectiveWorkingDir(tree.dir("work").c_str());
    {
        QBLMiniLogger logger("x");
        logger.log("no", "directory yet");
        tree.dir("logs");
        logger.init("x");
        QBLMiniLogger other("x");
        logger.log("caption %s", "line\n100 %d\n->");
        other.logTrace(nullptr, nullptr);
        logger.init("y");
        logger.log("c", "");
        QBLMiniLogger("").log("default", "name");
    }
    QBLFmDir::setEffectiveWorkingDir(nullptr);
    const std::string stamp = "\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3}";
    const std::regex wanted(stamp + "\tcaption %s Error\n<-\nline\n100 %d\n->\n->\n\n" + stamp +
                            "\t Trace\n<-\n\n->\n\n");
    EXPECT_TRUE(std::regex_match(tree.text("logs/x.log"), wanted)) << tree.text("logs/x.log");
    EXPECT_TRUE(
        std::regex_match(tree.text("logs/y.log"), std::regex(stamp + "\tc Error\n<-\n\n->\n\n")));
    EXPECT_NE("", tree.text("logs/qbl.log"));
}
