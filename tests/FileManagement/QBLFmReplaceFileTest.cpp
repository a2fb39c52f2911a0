#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <random>

#include "tests/support/Child.hpp"
#include "tests/support/FaultInjection.hpp"
#include "tests/support/TempTree.hpp"

namespace {

bool replace(const std::string& path, const std::string& text) {
    QBLFmReplaceFile file;
    return file.open(path.c_str()) && file.write(text.data(), text.size()) && file.commit();
}

unsigned modeOf(const std::string& path) {
    struct stat status {};
    stat(path.c_str(), &status);
    return status.st_mode & 07777;
}

std::ptrdiff_t entries(const TempTree& tree) {
    const auto all = std::filesystem::directory_iterator(tree.root());
    return std::distance(begin(all), end(all));
}

}  // namespace

TEST(QBLFmReplaceFileTest, KeepsModeLinksAndTheOldVersionElsewhere) {
    TempTree tree;
    const std::string path = tree.file("f", "old");
    chmod(path.c_str(), 04751);
    ASSERT_EQ(0, link(path.c_str(), tree("hard").c_str()));
    ASSERT_EQ(0, symlink("f", tree("soft").c_str()));
    EXPECT_TRUE(replace(tree("soft"), "new"));
    EXPECT_EQ("new", tree.text("f"));
    EXPECT_EQ("old", tree.text("hard"));
    EXPECT_TRUE(std::filesystem::is_symlink(tree("soft")));
    EXPECT_EQ(04751U, modeOf(path));
    const mode_t mask = umask(027);
    EXPECT_TRUE(replace(tree("fresh"), ""));
    umask(mask);
    EXPECT_EQ(0640U, modeOf(tree("fresh")));
    EXPECT_EQ(4, entries(tree)) << "and nothing is left behind";
}

TEST(QBLFmReplaceFileTest, RefusesWhatIsNoFileToReplace) {
    TempTree tree;
    ASSERT_EQ(0, symlink("nowhere", tree("broken").c_str()));
    ASSERT_EQ(0, mkfifo(tree("fifo").c_str(), 0600));
    const struct {
        std::string path;
        int error;
    } table[] = {{tree.root(), EISDIR},
                 {tree("broken"), ENOENT},
                 {tree("fifo"), EINVAL},
                 {tree("no/f"), ENOENT},
                 {tree("new/"), EISDIR},
                 {"", ENOENT},
                 {tree(std::string(300, 'x')), ENAMETOOLONG}};
    QBLFmReplaceFile file;
    for (const auto& row : table) {
        EXPECT_FALSE(file.open(row.path.c_str())) << row.path;
        EXPECT_EQ(row.error, file.getLastErrorNumber()) << row.path;
    }
    EXPECT_FALSE(file.open(nullptr));
    EXPECT_FALSE(file.write("x", 1));
    EXPECT_FALSE(file.commit());
    EXPECT_STREQ("Bad file descriptor", file.getLastErrorMessage());
    EXPECT_EQ(2, entries(tree));
}

TEST(QBLFmReplaceFileTest, LeavesTheOldVersionUnlessAllWentWell) {
    TempTree tree;
    const std::string path = tree.file("f", "old");
    {
        QBLFmReplaceFile abandoned;
        EXPECT_TRUE(abandoned.open(path.c_str()) && abandoned.write("new", 3));
    }
    QBLFmReplaceFile file;
    ASSERT_TRUE(file.open(path.c_str()) && file.write("new", 3));
    fault::failCall(fault::Fsync, 0, EIO);
    EXPECT_FALSE(file.commit());
    EXPECT_TRUE(fault::callFailed(fault::Fsync));
    EXPECT_EQ(EIO, file.getLastErrorNumber());
    EXPECT_FALSE(file.isCommitted());
    EXPECT_EQ("old", tree.text("f"));
    ASSERT_TRUE(file.open(path.c_str()) && file.write("new", 3));
    fault::failCall(fault::Fsync, 1, EIO);
    EXPECT_FALSE(file.commit()) << "of the directory";
    EXPECT_TRUE(file.isCommitted());
    EXPECT_EQ("new", tree.text("f"));
    fault::reset();
    const long failures = fault::eachAllocation([&] {
        QBLFmReplaceFile another;
        if (!another.open(path.c_str())) {
            EXPECT_EQ(ENOMEM, another.getLastErrorNumber());
        }
    });
    EXPECT_GT(failures, 0);
    EXPECT_EQ(1, entries(tree));
}

TEST(QBLFmReplaceFileTest, KeepsToWhatItsUserMayDo) {
    if (geteuid() != 0) GTEST_SKIP() << "becomes another user";
    TempTree tree;
    chmod(tree.root(), 0777);
    const std::string foreign = tree.file("foreign"), closed = tree.file("closed");
    chmod(foreign.c_str(), 06776);
    chmod(closed.c_str(), 0444);
    const int status = inChild([&] {
        if (setgid(65534) != 0 || setuid(65534) != 0) return 1;
        return (replace(foreign, "x") ? 0 : 2) + (replace(closed, "x") ? 4 : 0);
    });
    EXPECT_EQ(0, status);
    EXPECT_EQ(0766U, modeOf(foreign)) << "runs as nobody else, and a strange group gets no more";
}

TEST(QBLFmReplaceFileTest, IsWholeWheneverItsWriterIsKilled) {
    TempTree tree;
    const std::string path = tree.file("f", std::string(50000, 'a'));
    std::minstd_rand random(1);
    for (int i = 0; i < 200; ++i) {
        Child writer([&]() -> int {
            for (char c = 'b';; c = c == 'z' ? 'a' : static_cast<char>(c + 1))
                if (!replace(path, std::string(50000, c))) return 1;
        });
        usleep(static_cast<useconds_t>(random() % 3000));
        writer.kill(SIGKILL);
        EXPECT_EQ(-SIGKILL, writer.wait());
        const std::string text = tree.text("f");
        ASSERT_EQ(50000U, text.size());
        ASSERT_EQ(std::string::npos, text.find_first_not_of(text[0]));
    }
}
