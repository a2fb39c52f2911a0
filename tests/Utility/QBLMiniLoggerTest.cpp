#include "QBLCore/Utility/QBLMiniLogger.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <regex>

#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "tests/support/TempTree.hpp"

TEST(QBLMiniLoggerTest, AppendsFormattedRecordsOrNothing) {
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

TEST(QBLMiniLoggerTest, WritesOnlyToItsOwnFiles) {
    TempTree tree;
    QBLFmDir::setEffectiveWorkingDir(tree.dir("work").c_str());
    tree.dir("logs/sub");
    tree.file("victim.log");
    ASSERT_EQ(0, symlink("../victim.log", tree("logs/link.log").c_str()));
    ASSERT_EQ(0, link(tree("victim.log").c_str(), tree("logs/hard.log").c_str()));
    ASSERT_EQ(0, mkfifo(tree("logs/pipe.log").c_str(), 0600));
    for (const char* name : {"link", "hard", "pipe", "../victim", "sub/../../victim", "sub/own"})
        QBLMiniLogger(name).log("c", "t");
    QBLFmDir::setEffectiveWorkingDir(nullptr);
    EXPECT_EQ("", tree.text("victim.log"));
    EXPECT_NE("", tree.text("logs/sub/own.log"));
}
