#include "QBLCore/FileManagement/QBLFmDirectory.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"
#include "tests/support/TempTree.hpp"

namespace {

int errorOf(bool isDone) { return isDone ? 0 : errno; }

std::string namesIn(const std::string& path) {
    QBLFmDirectory directory;
    std::list<std::string> files, dirs;
    EXPECT_TRUE(directory.open(path.c_str()) && directory.readDir(&files, nullptr, &dirs, nullptr));
    std::string names;
    for (const auto* list : {&files, &dirs})
        for (const std::string& each : *list) names += each + " ";
    return names;
}

}  // namespace

TEST(QBLFmDirectoryTest, ResolvesNamesInTheOpenDirectoryOnly) {
    TempTree tree;
    tree.dir("in/deep");
    tree.dir("elsewhere");
    tree.file("in/deep/a", "a");
    tree.file("elsewhere/a", "b");
    ASSERT_EQ(0, symlink("../elsewhere", tree("in/link").c_str()));
    ASSERT_EQ(0, symlink("deep/a", tree("in/alias").c_str()));
    QBLFmDirectory top, deep, other;
    ASSERT_TRUE(top.open(tree("in").c_str()) && deep.open(top, "deep"));
    EXPECT_EQ(ENOTDIR, errorOf(other.open(top, "link")));
    EXPECT_EQ(ENOTDIR, errorOf(other.create(top, "alias", 0777)));
    for (const char* name : {"", ".", "..", "deep/a", "/etc"})
        EXPECT_EQ(EINVAL, errorOf(other.open(top, name))) << name;
    EXPECT_TRUE(other.create(top, "new", 0700) && other.create(top, "new", 0700));
    // The path now leads elsewhere, but the open directory is still the same.
    std::filesystem::rename(tree("in/deep"), tree("in/moved"));
    std::filesystem::rename(tree("in/link"), tree("in/deep"));
    char byte = 0;
    const int file = deep.openFile("a", O_RDONLY);
    EXPECT_EQ(1, read(file, &byte, 1));
    close(file);
    EXPECT_EQ('a', byte);
    EXPECT_EQ(ELOOP, errorOf(top.openFile("alias", O_RDONLY) >= 0));
    EXPECT_TRUE(deep.rename("a", "b") && deep.remove("b"));
    EXPECT_EQ("b", tree.text("elsewhere/a"));
    EXPECT_EQ("alias deep moved new ", namesIn(tree("in"))) << "a broken link counts as a file";
    std::string name;
    EXPECT_TRUE(other.openParent(tree("in/deep/a").c_str(), name));
    EXPECT_EQ("a", name);
    EXPECT_EQ("a ", namesIn(tree("elsewhere")));
}

TEST(QBLFmDirectoryTest, CommitOverReplacesOnlyTheGivenFile) {
    TempTree tree;
    QBLFmDirectory directory;
    ASSERT_TRUE(directory.open(tree.root()));
    const int old = open(tree.file("f", "old").c_str(), O_RDONLY);
    QBLFmReplaceFile file;
    const auto begin = [&] {
        return file.open(directory, "f") && file.write("new", 3) && file.flush();
    };
    // Now another file has the name.
    ASSERT_TRUE(begin());
    std::filesystem::rename(tree("f"), tree("g"));
    tree.file("f", "other");
    EXPECT_FALSE(file.commitOver(old));
    EXPECT_EQ(ESTALE, file.getLastErrorNumber());
    EXPECT_FALSE(file.isCommitted());
    EXPECT_EQ("other", tree.text("f"));
    EXPECT_EQ("f g ", namesIn(tree.root()));
    // The replaced version can be kept; otherwise it is removed.
    std::filesystem::rename(tree("g"), tree("f"));
    ASSERT_TRUE(begin());
    EXPECT_TRUE(file.commitOver(old) && file.isCommitted());
    EXPECT_FALSE(file.keepReplaced("f"));
    EXPECT_EQ(EEXIST, file.getLastErrorNumber());
    EXPECT_TRUE(file.keepReplaced("f.old"));
    EXPECT_FALSE(file.keepReplaced("f.old2"));
    EXPECT_EQ("new", tree.text("f"));
    EXPECT_EQ("old", tree.text("f.old"));
    const int again = open(tree("f").c_str(), O_RDONLY);
    ASSERT_TRUE(begin() && file.commitOver(again));
    file.discard();
    EXPECT_EQ("f f.old ", namesIn(tree.root()));
    ASSERT_EQ(0, symlink("f", tree("link").c_str()));
    EXPECT_FALSE(file.open(directory, "link"));
    for (const int each : {old, again}) close(each);
}
