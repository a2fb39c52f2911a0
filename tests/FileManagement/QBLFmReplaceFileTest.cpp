#include "QBLCore/FileManagement/QBLFmReplaceFile.hpp"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <random>

#include "QBLCore/FileLock/M_LockFile.hpp"
#include "QBLCore/FileManagement/QBLFmReplaceStream.hpp"
#include "tests/faults/Injector.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/TempTree.hpp"

namespace {

bool replace(const std::string& path, const std::string& text) {
    QBLFmReplaceFile file;
    return file.open(path.c_str()) && file.write(text.data(), text.size()) && file.commit();
}

const char kList[] = "system.posix_acl_access";

unsigned modeOf(const std::string& path) {
    struct stat status {};
    stat(path.c_str(), &status);
    return status.st_mode & 07777;
}

bool becomesNobody() {
    return setgroups(0, nullptr) == 0 && setgid(65534) == 0 && setuid(65534) == 0;
}

std::ptrdiff_t entries(const TempTree& tree) {
    const auto all = std::filesystem::directory_iterator(tree.root());
    return std::distance(begin(all), end(all));
}

}  // namespace

TEST(QBLFmReplaceFileTest, KeepsModeAndSymbolicLinksAndLeavesHardLinksToTheOldVersion) {
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
    EXPECT_EQ(4, entries(tree)) << "no temporary file is left";
}

TEST(QBLFmReplaceFileTest, KeepsLocksOnTheOldVersion) {
    TempTree tree;
    const std::string path = tree.file("f", "old");
    const int fd = ::open(path.c_str(), O_RDWR);
    QBLFmReplaceFile file;
    ASSERT_TRUE(M_LockFile(fd, 0, 0) == 1 && file.open(path.c_str()));
    EXPECT_EQ(0, inChild([&] { return M_LockFile(::open(path.c_str(), O_RDWR), 0, 0); }));
    ::close(fd);
}

TEST(QBLFmReplaceFileTest, RefusesPathsThatAreNotRegularFiles) {
    TempTree tree;
    ASSERT_EQ(0, symlink("nowhere", tree("broken").c_str()));
    ASSERT_EQ(0, mkfifo(tree("fifo").c_str(), 0600));
    const std::pair<std::string, int> table[] = {{tree.root(), EISDIR},  {tree("broken"), ENOENT},
                                                 {tree("fifo"), EINVAL}, {tree("no/f"), ENOENT},
                                                 {tree("new/"), EISDIR}, {"", ENOENT}};
    QBLFmReplaceFile file;
    for (const auto& [path, error] : table) {
        EXPECT_FALSE(file.open(path.c_str())) << path;
        EXPECT_EQ(error, file.getLastErrorNumber()) << path;
    }
    EXPECT_FALSE(file.open(nullptr) || file.write("x", 1) || file.commit());
    EXPECT_STREQ("Bad file descriptor", file.getLastErrorMessage());
    EXPECT_EQ(2, entries(tree));
}

TEST(QBLFmReplaceFileTest, LeavesNoTemporaryFileIfItFails) {
    TempTree tree;
    const std::string path = tree.file("f", "old");
    for (const long n : {0L, 1L}) {  // fsync of the file, then of the directory
        QBLFmReplaceFile file;
        ASSERT_TRUE(file.open(path.c_str()) && file.write("new", 3));
        fault::failCall(fault::kFsync, n, EIO);
        EXPECT_FALSE(file.commit());
        EXPECT_EQ(n == 1, file.isCommitted());
        EXPECT_TRUE(fault::reset());
    }
    EXPECT_EQ(1, entries(tree));
}

TEST(QBLFmReplaceFileTest, RespectsThePermissionsOfTheUser) {
    if (geteuid() != 0) GTEST_SKIP() << "becomes another user";
    TempTree tree;
    chmod(tree.root(), 0777);
    const std::string foreign = tree.file("foreign"), closed = tree.file("closed");
    const std::string program = tree.file("program"), blind = tree.dir("blind");
    for (const std::string& own : {program, blind}) chown(own.c_str(), 65534, 65534);
    chmod(foreign.c_str(), 06776);
    chmod(closed.c_str(), 0444);
    chmod(program.c_str(), 06711);
    chmod(blind.c_str(), 0333);
    const int status = inChild([&] {
        if (!becomesNobody()) return 1;
        return (replace(foreign, "x") ? 0 : 2) + (replace(closed, "x") ? 4 : 0) +
               (replace(program, "x") ? 0 : 8) + (replace(blind + "/f", "x") ? 0 : 16);
    });
    EXPECT_EQ(0, status);
    EXPECT_EQ(0766U, modeOf(foreign))
        << "loses the set-id bits, and the new group gets no more rights than others";
    EXPECT_EQ(06711U, modeOf(program));
    EXPECT_EQ("x", tree.text("blind/f"));
}

TEST(QBLFmReplaceFileTest, KeepsAccessListsAndAttributes) {
    TempTree tree;
    // The owner and user 1 may read and write, the file's group and others nothing.
    const std::string list(
        "\2\0\0\0\1\0\6\0\xFF\xFF\xFF\xFF\2\0\6\0\1\0\0\0\4\0\0\0\xFF\xFF\xFF\xFF"
        "\x10\0\6\0\xFF\xFF\xFF\xFF\x20\0\0\0\xFF\xFF\xFF\xFF",
        44);
    const auto attribute = [&tree](const char* file, const char* name) {
        char value[100] = {};
        const ssize_t n = getxattr(tree(file).c_str(), name, value, sizeof value);
        return std::string(value, n > 0 ? static_cast<std::size_t>(n) : 0);
    };
    tree.file("plain");
    chmod(tree("plain").c_str(), 0660);
    const std::string listed = tree.file("listed");
    if (setxattr(listed.c_str(), kList, list.data(), list.size(), 0) != 0 ||
        setxattr(listed.c_str(), "user.note", "n", 1, 0) != 0 ||
        setxattr(tree.root(), "system.posix_acl_default", list.data(), list.size(), 0) != 0)
        GTEST_SKIP() << "the file system has no access lists";
    EXPECT_TRUE(replace(listed, "x") && replace(tree("plain"), "x"));
    EXPECT_EQ(list, attribute("listed", kList));
    EXPECT_EQ("n", attribute("listed", "user.note"));
    EXPECT_EQ(0660U, modeOf(listed)) << "the mask of the access list";
    EXPECT_EQ("", attribute("plain", kList)) << "the default list must not give user 1 access";
    EXPECT_EQ(0660U, modeOf(tree("plain")));
    const int status = inChild([&] {
        return chroot(tree.root()) != 0 ? 77 : replace("/listed", "x") ? 0 : 1;
    });
    if (status == 77) return;
    EXPECT_EQ(0, status);
    EXPECT_EQ(0600U, modeOf(listed)) << "the access list cannot be read without /proc";
}

TEST(QBLFmReplaceFileTest, RefusesLinksOfOtherUsersInSharedDirectories) {
    if (geteuid() != 0) GTEST_SKIP() << "becomes another user";
    TempTree tree;
    chmod(tree.root(), 0755);
    chmod(tree.dir("all").c_str(), 01777);
    chown(tree("all").c_str(), 1, 1);
    chown(tree.dir("own").c_str(), 65534, 65534);
    const struct {
        const char *link, *target, *path;
        uid_t owner;
        bool followed;
    } table[] = {{"all/mine", "../own/a", "all/mine", 65534, true},
                 {"all/dirs", "../own/a", "all/dirs", 1, true},
                 {"all/other", "../own/a", "all/other", 2, false},
                 {"all/way", "../own", "all/way/a", 2, false},
                 {"own/on", "../all/other", "own/on", 65534, false},
                 {"own/root", "a", "own/root", 0, true}};
    chown(tree.file("own/a", "old").c_str(), 65534, 65534);
    for (const auto& row : table) {
        ASSERT_EQ(0, symlink(row.target, tree(row.link).c_str()));
        lchown(tree(row.link).c_str(), row.owner, row.owner);
        const int status = inChild([&] {
            if (!becomesNobody()) return -1;
            QBLFmReplaceFile file;
            return file.open(tree(row.path).c_str()) ? 0 : file.getLastErrorNumber();
        });
        EXPECT_EQ(row.followed ? 0 : EACCES, status) << row.link;
    }
}

TEST(QBLFmReplaceFileTest, FileIsNeverPartialIfItsWriterIsKilled) {
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
    for (const auto& entry : std::filesystem::directory_iterator(tree("")))
        EXPECT_TRUE(entry.path().filename() == "f" ||
                    entry.path().filename().string().rfind(".QBLFm", 0) == 0)
            << entry.path();
}

TEST(QBLFmReplaceFileTest, IsAStreamThatReplacesOnlyWhenItCommits) {
    const TempTree tree;
    const std::filesystem::path path = tree.file("file", "old");
    const std::string large(20000, 'x');
    {
        QBLFmReplaceStream unfinished(path);
        unfinished << large;
    }
    EXPECT_EQ("old", tree.text("file"));
    QBLFmReplaceStream out(path.c_str());
    for (int i = 0; i < 3000; ++i) out << i % 10 << "ab" << std::flush;
    out << large;
    EXPECT_TRUE(out.commit());
    EXPECT_EQ(29000U, tree.text("file").size());
    EXPECT_EQ("8ab9abxx", tree.text("file").substr(8994, 8));
    EXPECT_FALSE(out << "late" && out.commit());
    QBLFmReplaceStream absent(std::filesystem::path(tree("absent")) / "x");
    EXPECT_FALSE(absent.commit());
    EXPECT_EQ(ENOENT, absent.getFile().getLastErrorNumber());
    EXPECT_EQ(1, entries(tree));
}
