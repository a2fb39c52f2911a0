#include "QBLCore/FileManagement/QBLFmDir.hpp"

#include <fcntl.h>
#include <sched.h>
#include <sys/auxv.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <clocale>

#include <functional>
#include <mutex>
#include <set>

#include "QBLCore/Base/QBLFileStatus.hpp"
#include "QBLCore/FileManagement/QBLFmFile64.hpp"
#include "QBLCore/FileManagement/skipRootPath.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/TempTree.hpp"
#include "tests/support/ThrowChecks.hpp"
#include "tests/support/Workers.hpp"

namespace {

typedef std::list<std::string> Names;

int openDescriptors() {
    int count = 0;
    for (int fd = 0; fd < 1024; ++fd) count += fcntl(fd, F_GETFD) != -1 ? 1 : 0;
    return count;
}

constexpr int kNoCage = 77;

/// Runs a body in a process whose root and working directory are the tree, so that a faulty removal
/// cannot reach other files.
int inCage(const TempTree& tree, const std::function<int()>& body) {
    return inChild([&] {
        QBLFileStatus cage, seen;
        if (!cage.get(tree.root())) return kNoCage;
        if (chroot(tree.root()) != 0 && (unshare(CLONE_NEWUSER) != 0 || chroot(tree.root()) != 0))
            return kNoCage;
        if (chdir("/") != 0 || !seen.get("/") || !seen.isSameFile(cage)) return kNoCage;
        return body();
    });
}

}  // namespace

// fuzz/QBLFmDirFuzz.cpp checks splitting, joining, resolving and patterns against models.
TEST(QBLFmDirTest, ReturnsTheLengthOfTheRootOfAPath) {
    for (const char* path : {"\xC3\xA9", "a\xFF", "//a\xFF/"})
        EXPECT_EQ(-1, skipRootPath(path)) << path;
    EXPECT_EQ(0, skipRootPath("ab\xFF"));
    EXPECT_EQ(1, skipRootPath("/:x", 1));
    const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t before = uselocale(utf8);
    EXPECT_EQ(0, skipRootPath("\xC3\xA9")) << "valid in this locale";
    EXPECT_EQ(8, skipRootPath("//\xC3\xA9/\xC3\xA9/"));
    uselocale(before);
    freelocale(utf8);
}

TEST(QBLFmDirTest, JoinsAPathToItselfAndAcceptsNull) {
    std::string own("ab");
    QBLFmDir::joinPath(own, own.c_str());
    QBLFmDir::joinPath(own, nullptr);
    EXPECT_EQ("ab/ab", own);
    EXPECT_FALSE(QBLFmDir::splitPath(nullptr, &own, nullptr));
    EXPECT_FALSE(QBLFmDir::splitPath("a/b", nullptr, nullptr));
}

TEST(QBLFmDirTest, ComparesTypeAndPermissionsOfAFile) {
    TempTree tree;
    const std::string file = tree.file("f");
    chmod(file.c_str(), 0640);
    EXPECT_TRUE(QBLFmDir::exists(file.c_str(), S_IFREG | 0440));
    EXPECT_FALSE(QBLFmDir::exists(file.c_str(), S_IFREG | 0642));
    EXPECT_FALSE(QBLFmDir::exists(file.c_str(), S_IFDIR) || QBLFmDir::exists(nullptr, S_IFREG));
}

TEST(QBLFmDirTest, CreatesDirectoriesConcurrently) {
    TempTree tree;
    const std::string deep = tree("a/b/c//d/e/");
    Workers(8, [&] { EXPECT_TRUE(QBLFmDir::createRecursiveDir(deep.c_str())); }).join();
    EXPECT_TRUE(QBLFmDir::createDir(deep.c_str())) << "the directory exists";
    EXPECT_FALSE(QBLFmDir::createDir(tree("x/y").c_str()));
    EXPECT_FALSE(QBLFmDir::createDir(tree.file("f").c_str()));
    EXPECT_EQ(EEXIST, errno);
    EXPECT_FALSE(QBLFmDir::createRecursiveDir(tree("f/x").c_str()));
    EXPECT_FALSE(QBLFmDir::createRecursiveDir(""));
}

TEST(QBLFmDirTest, ListsSortedNamesByKindAndPattern) {
    TempTree tree;
    for (const char* name :
         {"b.txt", "a.txt", "A.txt", "\xC3\xA9.txt", "\xFF", "\xED\xA0\x80", "x*y"})
        tree.file(name);
    tree.dir("sub");
    tree.dir("other");
    std::filesystem::create_directory_symlink("sub", tree("link"));
    std::filesystem::create_symlink("nowhere", tree("broken"));
    Names files{"old"}, dirs;
    ASSERT_TRUE(QBLFmDir::readDir(tree.root(), &files, nullptr, &dirs, ""));
    EXPECT_EQ(
        (Names{"A.txt", "a.txt", "b.txt", "broken", "x*y", "\xC3\xA9.txt", "\xED\xA0\x80", "\xFF"}),
        files);
    EXPECT_EQ((Names{"link", "other", "sub"}), dirs);
    ASSERT_TRUE(QBLFmDir::readDir(tree.root(), &files, "?.txt", nullptr, nullptr));
    EXPECT_EQ((Names{"A.txt", "a.txt", "b.txt", "\xC3\xA9.txt"}), files);
    files = {"kept"};
    EXPECT_FALSE(QBLFmDir::readDir(tree("absent").c_str(), &files, nullptr, nullptr, nullptr));
    EXPECT_EQ(ENOENT, errno);
    EXPECT_EQ(Names{"kept"}, files);
}

TEST(QBLFmDirTest, RemovesATreeButNotTheTargetsOfLinks) {
    TempTree tree;
    tree.dir("outside");
    tree.file("outside/kept");
    std::string deep = tree.dir("top");
    for (int i = 0; i < 300; ++i) {
        deep += "/d";
        ASSERT_TRUE(QBLFmDir::createDir(deep.c_str()));
        ASSERT_EQ(0, symlink("..", (deep + "/up").c_str()));
        ASSERT_EQ(0, symlink("/outside", (deep + "/out").c_str()));
        std::ofstream(deep + "/\xFE\xFF");
    }
    ASSERT_EQ(0, symlink("top", tree("alias").c_str()));
    const int status = inCage(tree, [] {
        const auto before = openDescriptors();
        const rlimit few = {static_cast<rlim_t>(before + 4), static_cast<rlim_t>(before + 4)};
        setrlimit(RLIMIT_NOFILE, &few);
        return QBLFmDir::removeDir("/top//") ? 0 : errno;
    });
    if (status == kNoCage) GTEST_SKIP() << "needs a root directory of its own";
    EXPECT_EQ(0, status);
    EXPECT_FALSE(QBLFmDir::exists(tree("top").c_str(), S_IFDIR));
    EXPECT_TRUE(QBLFmDir::exists(tree("outside/kept").c_str(), S_IFREG));
}

TEST(QBLFmDirTest, RefusesToRemoveRootDotsAndLinks) {
    const struct {
        const char* path;
        int error;
    } table[] = {{"/", EBUSY},       {"//", EBUSY},       {"", ENOENT},       {".", EINVAL},
                 {"..", EINVAL},     {"./", EINVAL},      {"/top/.", EINVAL}, {"/top/d/..", EINVAL},
                 {"alias", ENOTDIR}, {"alias/", ENOTDIR}, {"absent", ENOENT}, {"kept", ENOTDIR}};
    for (const auto& row : table) {
        TempTree tree;
        tree.dir("top/d");
        tree.file("top/d/kept");
        tree.file("top/kept");
        ASSERT_EQ(0, symlink("d", tree("top/alias").c_str()));
        const int status = inCage(tree, [&row] {
            if (chdir("/top") != 0) return -1;
            return QBLFmDir::removeDir(row.path) ? 0 : errno;
        });
        if (status == kNoCage) GTEST_SKIP() << "needs a root directory of its own";
        EXPECT_EQ(row.error, status) << row.path;
        for (const char* kept : {"top/d/kept", "top/kept", "top/alias/kept"})
            EXPECT_TRUE(QBLFmDir::exists(tree(kept).c_str(), S_IFREG)) << row.path << ' ' << kept;
    }
}

TEST(QBLFmDirTest, RemovesWhatItCanAndReportsTheRest) {
    if (geteuid() != 0) GTEST_SKIP() << "becomes another user";
    TempTree tree;
    tree.dir("top/closed/inner");
    for (const char* name :
         {"", "top", "top/closed/inner", "top/a", "top/unread", "top/unsearched"})
        chown(tree.dir(name).c_str(), 65534, 0);
    tree.file("top/f");
    chmod(tree("top/unread").c_str(), 0);
    chmod(tree("top/unsearched").c_str(), 0600);
    chown(tree.dir("unsearched").c_str(), 65534, 0);
    chmod(tree("unsearched").c_str(), 0600);
    const int status = inCage(tree, [] {
        if (setuid(65534) != 0 || !QBLFmDir::removeDir("/unsearched")) return -1;
        const auto before = openDescriptors();
        const int error = QBLFmDir::removeDir("/top") ? 0 : errno;
        return openDescriptors() == before ? error : -1;
    });
    if (status == kNoCage) GTEST_SKIP() << "needs a root directory of its own";
    EXPECT_EQ(EACCES, status);
    Names files, dirs;
    EXPECT_TRUE(QBLFmDir::readDir(tree("top").c_str(), &files, nullptr, &dirs, nullptr));
    EXPECT_TRUE(files.empty());
    EXPECT_EQ(Names{"closed"}, dirs);
}

TEST(QBLFmDirTest, AcceptsAndReturnsI18NStrings) {
    TempTree tree;
    I18NString dir(tree.root()), made, before, after;
    QBLFmDir::joinPath(dir, I18NString("\u00E9te\u0301/\u4E2D"));
    const I18NString prefix("\u00FC"), pattern("\u00FC*"), none("?");
    ASSERT_TRUE(QBLFmDir::createRecursiveDir(dir));
    ASSERT_TRUE(QBLFmDir::createTempFile(&dir, &prefix, made));
    QBLFmFile64 file;
    ASSERT_TRUE(file.open(made, QBLFmFile64::existing, 0));
    EXPECT_EQ(made, file.getFileName());
    EXPECT_TRUE(file.open(file.getFileName(), QBLFmFile64::existing, 1))
        << "open() must not use the name after closing the file";
    EXPECT_TRUE(QBLFmDir::splitPath(made, &before, &after) && dir == before);
    EXPECT_EQ(made, QBLFmDir::getFileFullPath(after, dir, {}));
    std::list<I18NString> files, dirs;
    EXPECT_TRUE(QBLFmDir::createDir(dir + "/x") && QBLFmDir::createDir(dir + "/yy"));
    ASSERT_TRUE(QBLFmDir::readDir(dir, &files, &pattern, &dirs, &none));
    EXPECT_TRUE(files == std::list<I18NString>{after} &&
                dirs == std::list<I18NString>{I18NString("x")});
    const I18NString cut = I18NString(made).append(L'\0').append(".txt");
    EXPECT_TRUE(!QBLFmDir::removeFile(cut) && errno == EILSEQ)
        << "up to the terminating NUL, this is the name of another file";
    for (const char16_t half : {u'\xD800', u'\xDC00'}) {
        const I18NString lone(&half, 2);
        EXPECT_TRUE(!QBLFmDir::exists(lone, S_IFDIR) && errno == EILSEQ);
        EXPECT_TRUE(!file.open(lone, QBLFmFile64::existing, 0) &&
                    file.getLastErrorNumber() == EILSEQ);
    }
    QBLFmDir::joinPath(dir.remove(), after);
    EXPECT_EQ(after, dir);
}

TEST(QBLFmDirTest, NeverReusesATemporaryName) {
    TempTree tree;
    std::mutex lock;
    std::set<std::string> names;
    Workers(20, [&] {
        for (int i = 0; i < 10; ++i) {
            std::string path;
            EXPECT_TRUE(i % 2 == 0 ? QBLFmDir::createTempDir(tree.root(), "t", path)
                                   : QBLFmDir::createTempFile(tree.root(), "t", path, ".x"));
            std::lock_guard<std::mutex> hold(lock);
            EXPECT_TRUE(names.insert(path).second) << path;
        }
    }).join();
    EXPECT_EQ(200U, names.size());
    std::string path("?");
    EXPECT_FALSE(QBLFmDir::createTempFile(tree("absent").c_str(), "t", path));
    EXPECT_TRUE(QBLFmDir::createTempFile(tree.root(), nullptr, path));
    EXPECT_EQ(0U, path.find(tree("QBLFm")));
    EXPECT_FALSE(QBLFmDir::createTempDir(tree.root(), "no/such/dir", path))
        << "gives up after 500 attempts";
    EXPECT_EQ("499", path.substr(path.size() - 3));
}

TEST(QBLFmDirTest, PrivateTemporaryNamesAreUnpredictable) {
    TempTree tree;
    const mode_t mask = umask(0);
    std::set<std::string> names;
    for (int i = 0; i < 4; ++i) {
        std::string path;
        EXPECT_TRUE(i % 2 == 0 ? QBLFmDir::createPrivateTempDir(tree.root(), "t", path)
                               : QBLFmDir::createPrivateTempFile(tree.root(), "t", path, ".x"));
        QBLFileStatus status;
        ASSERT_TRUE(status.get(path.c_str()));
        EXPECT_EQ(i % 2 == 0 ? S_IFDIR | 0700U : S_IFREG | 0600U, status.mode());
        EXPECT_TRUE(names.insert(path.substr(path.size() - 6)).second)
            << "the suffix is not random";
    }
    umask(mask);
}

// Runs a copy of this program that belongs to another user and has the set-user-ID bit.
TEST(QBLFmDirTest, IgnoresTheEnvironmentInSetUserIdPrograms) {
    std::string path;
    // Exits without the search for leaks, which is not allowed to trace a set-user-ID process.
    if (getauxval(AT_SECURE) != 0) _exit(QBLFmDir::getTempPath(path) && path == "/tmp" ? 0 : 1);
    if (geteuid() != 0) GTEST_SKIP() << "becomes another user";
    TempTree tree;
    chmod(tree.root(), 0755);
    const std::string copy = tree("copy");
    std::filesystem::copy_file("/proc/self/exe", copy);
    chown(copy.c_str(), 65534, 65534);
    chmod(copy.c_str(), 04755);
    const std::string run = copy + " --gtest_filter=*IgnoresTheEnvironment*";
    EXPECT_EQ(0, inChild([&] {
                  setenv("TMP", tree.root(), 1);
                  return std::system(run.c_str()) == 0 ? 0 : 1;
              }));
}

TEST(QBLFmDirTest, TakesTheTemporaryDirectoryFromSettingThenEnvironment) {
    TempTree tree;
    const auto tempPath = [] {
        std::string path("?");
        return QBLFmDir::getTempPath(path) ? path : "none";
    };
    const std::string first = tree.dir("first"), second = tree.dir("second");
    const int status = inChild([&] {
        for (const char* name : {"TMP", "tmp", "TEMP", "temp"}) unsetenv(name);
        EXPECT_EQ("/tmp", tempPath());
        setenv("temp", second.c_str(), 1);
        EXPECT_EQ(second, tempPath());
        setenv("tmp", first.c_str(), 1);
        EXPECT_EQ(first, tempPath());
        setenv("TMP", "/nonexistent", 1);
        EXPECT_EQ("/tmp", tempPath()) << "only the first variable that is set counts";
        QBLFmDir::setTempPath("anything");
        EXPECT_EQ("anything", tempPath());
        QBLFmDir::setTempPath("");
        EXPECT_EQ("/tmp", tempPath());
        return ::testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(0, status);
}

TEST(QBLFmDirTest, FindsFilesFromTheirBase) {
    TempTree tree;
    tree.dir("base/rel");
    tree.dir("abs/f");
    const std::string own = tree.file("base/rel/f"), other = tree.file("abs/g");
    const Names search{"rel", tree("abs")};
    EXPECT_EQ(own, QBLFmDir::getFileFullPath("f", tree("base").c_str(), search));
    EXPECT_EQ(other, QBLFmDir::getFileFullPath("g", tree("base").c_str(), search));
    EXPECT_EQ(own, QBLFmDir::getFileFullPath("rel/f", tree("base").c_str(), {}));
    EXPECT_EQ(other, QBLFmDir::getFileFullPath(other.c_str(), "x", {}));
    EXPECT_EQ("", QBLFmDir::getFileFullPath("h", tree("base").c_str(), search));
    EXPECT_EQ("", QBLFmDir::getFileFullPath(tree("h").c_str(), "x", {"/"}));
    QBL_EXPECT_THROW(QBLFmDir::getFileFullPath(nullptr, "x", {}), QBLAssertError,
                     "QBL_ASSERT(fileName);");
    QBL_EXPECT_THROW(QBLFmDir::getFileFullPath("x", nullptr, {}), QBLAssertError,
                     "QBL_ASSERT(basePath);");
}

TEST(QBLFmDirTest, TakesStandardPaths) {
    const TempTree tree;
    const std::filesystem::path root = tree.root(), a = root / "a", zero(std::string("a\0b", 3));
    EXPECT_TRUE(QBLFmDir::createRecursiveDir(a / "b") && QBLFmDir::exists(a, S_IFDIR));
    QBLFmFile64 file;
    EXPECT_TRUE(file.open(a / "c", QBLFmFile64::create, 0));
    EXPECT_TRUE(QBLFmDir::renameFile(a / "c", a / "d") && QBLFmDir::removeFile(a / "d"));
    EXPECT_FALSE(QBLFmDir::createDir(zero) || file.open(zero, QBLFmFile64::create, 0));
    std::filesystem::path created;
    EXPECT_TRUE(QBLFmDir::createPrivateTempFile(a, "t", created, ".x"));
    EXPECT_TRUE(created.parent_path() == a && created.extension() == ".x");
    std::list<std::string> names;
    EXPECT_TRUE(QBLFmDir::readDir(a, &names, nullptr, nullptr, nullptr));
    EXPECT_EQ(std::list<std::string>{created.filename()}, names);
    EXPECT_FALSE(QBLFmDir::createTempDir(zero, "t", created));
    EXPECT_EQ(EFAULT, errno);
    EXPECT_TRUE(QBLFmDir::removeDir(a));
}
