#include "QBLCore/FileManagement/QBLFmEntries.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <set>

#include "QBLCore/Exceptions/QBLSystemError.hpp"
#include "QBLCore/FileManagement/QBLFmDirectory.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/ThrowChecks.hpp"

namespace {

using Lines = std::set<std::string>;

/// Returns "depth type size name" for each entry.
Lines list(QBLFmEntries&& entries) {
    Lines lines;
    for (const QBLFmEntry& entry : entries)
        lines.insert(std::to_string(entry.getDepth()) + "?fdlpsbc"[entry.getType()] + ' ' +
                     std::to_string(entry.isDirectory() ? 0 : entry.getSize()) + ' ' +
                     std::string(entry.getName()));
    return lines;
}

}  // namespace

TEST(QBLFmEntriesTest, ListsATreeWithTypesAndSizes) {
    static_assert(std::is_same_v<std::input_iterator_tag,
                                 std::iterator_traits<QBLFmEntries::iterator>::iterator_category>);
    const TempTree tree;
    tree.dir("a/b/c");
    tree.file("a/b/deep", "12345");
    tree.file("top", "1");
    ASSERT_EQ(0, mkfifo(tree("pipe").c_str(), 0600));
    ASSERT_EQ(0, symlink("a", tree("link").c_str()));
    ASSERT_EQ(0, symlink("..", tree("a/b/c/up").c_str()));
    const Lines flat = {"0d 0 a", "0f 1 top", "0p 0 pipe", "0l 1 link"};
    EXPECT_EQ(flat, list(QBLFmEntries(std::filesystem::path(tree.root()))));
    Lines all = flat;
    all.insert({"1d 0 b", "2f 5 deep", "2d 0 c", "3l 2 up"});
    EXPECT_EQ(all, list(QBLFmEntries(tree.root(), QBLFmEntries::kRecursive)));
    EXPECT_EQ(1U, list(QBLFmEntries(tree.root(), QBLFmEntries::kTypesOnly)).count("0f 0 top"));
    QBLFmDirectory open;
    ASSERT_TRUE(open.open(tree("a").c_str()));
    QBLFmEntries inside(open, QBLFmEntries::kRecursive | QBLFmEntries::kTypesOnly);
    EXPECT_EQ("b", inside.begin()->getPath());
    inside.skipContent();
    EXPECT_TRUE(++inside.begin() == inside.end());
    EXPECT_TRUE(inside.begin() == inside.end()) << "a pass cannot begin again";
}

TEST(QBLFmEntriesTest, TellsSizesAndTimesThat32BitsCannotHold) {
    const TempTree tree;
    const std::string path = tree.file("late");
    ASSERT_EQ(0, truncate64(path.c_str(), 5000000000LL));
    ASSERT_EQ(0, std::system(("touch -d @4000000000.5 " + path).c_str()));
    QBLFmEntries entries(std::string(tree.root()) + "/");
    QBLFmEntry moved = *entries.begin()++;
    const QBLFmEntry entry = std::move(moved);
    EXPECT_EQ("", moved.getName());  // NOLINT(bugprone-use-after-move): tests the state after it
    EXPECT_EQ(path, entry.getPath());
    EXPECT_EQ(5000000000U, entry.getSize());
    EXPECT_EQ(4000000000, entry.getModifiedSeconds());
    EXPECT_EQ(500000000U, entry.getModifiedNanoseconds());
}

TEST(QBLFmEntriesTest, ReportsWhatItCannotList) {
    const TempTree tree;
    const std::string absent = tree("absent");
    const std::string text = "QBLFmEntries: cannot list " + absent + ": No such file or directory";
    QBL_EXPECT_THROW(QBLFmEntries(absent.c_str()), QBLSystemError, text.c_str(), ENOENT);
    QBL_EXPECT_THROW(QBLFmEntries(static_cast<const char*>(nullptr)), QBLSystemError,
                     "QBLFmEntries: cannot list (null): Bad address", EFAULT);
    EXPECT_THROW(QBLFmEntries(std::string("/\0x", 3)), QBLSystemError);
    EXPECT_THROW(QBLFmEntries{QBLFmDirectory()}, QBLSystemError);
}

TEST(QBLFmEntriesTest, GoesOnAfterADirectoryThatItCannotOpen) {
    const TempTree tree;
    tree.dir("a/inside");
    tree.dir("b/inside");
    QBLFmEntries entries(tree.root(), QBLFmEntries::kRecursive);
    fault::strike(fault::Disaster::kDescriptors, 0);
    const std::vector<QBLFmEntry> found(entries.begin(), entries.end());
    fault::reset();
    ASSERT_EQ(2U, found.size());
    EXPECT_TRUE(found[0].getErrorNumber() == EMFILE && found[1].getErrorNumber() == EMFILE);
}
