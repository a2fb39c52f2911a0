#include <fcntl.h>
#include <sys/stat.h>

#include <random>

#include "QBLCore/FileLock/M_LockFile.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/Workers.hpp"
#include "tests/tools/RunTool.hpp"
#include "tools/qblconv/Input.hpp"

namespace {

const std::string kShiftJIS = "a\x82\xA0\n", kUTF8 = "aあ\n", kBroken = "b\n\x82";
const std::string kCutOff = "bad:2:1: byte 2: 82 is an incomplete Shift_JIS sequence at the end\n";

std::string times(int count, const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

std::string namesIn(const TempTree& tree, const std::string& directory) {
    return runTool(tree, "cd '" + directory + "' && find . -mindepth 1 | sort | tr '\\n' ' '")
        .output;
}

unsigned modeOf(const std::string& path) {
    struct stat64 status = {};
    return stat64(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0U;
}

Child start(const std::vector<std::string>& arguments) {
    return Child([&] {
        std::vector<char*> words = {const_cast<char*>(QBL_CONV)};
        for (const std::string& argument : arguments)
            words.push_back(const_cast<char*>(argument.c_str()));
        words.push_back(nullptr);
        dup2(open("/dev/null", O_RDWR), STDERR_FILENO);
        execv(QBL_CONV, words.data());
        return 127;
    });
}

/// Returns the number of repetitions. An environment variable can set the number for longer runs.
int repeats(const char* variable, int usual) {
    const char* const value = std::getenv(variable);
    return value != nullptr ? std::atoi(value) : usual;
}

/// Waits until the tool in a child process has a file open.
bool hasOpened(const Child& child, const std::string& path) {
    const std::string process = "/proc/" + std::to_string(child.pid()), files = process + "/fd";
    return eventually([&] {
        std::error_code problem;
        if (!std::filesystem::equivalent(process + "/exe", QBL_CONV, problem)) return false;
        for (const auto& file : std::filesystem::directory_iterator(files, problem))
            if (std::filesystem::equivalent(file.path(), path, problem)) return true;
        return false;
    });
}

}  // namespace

TEST(QblconvFilesTest, InPlaceKeepsModeLinksAndOptionallyTheOriginal) {
    TempTree tree;
    tree.file("s", kShiftJIS);
    ASSERT_EQ(0, chmod(tree("s").c_str(), 0640));
    std::filesystem::create_symlink("s", tree("link"));
    // A file is converted once, even if several operands name it.
    expectRun(tree, "$S -vi=.old link ./s", 0, "link: converted from Shift_JIS\n");
    EXPECT_EQ(kUTF8, tree.text("s"));
    EXPECT_EQ(kShiftJIS, tree.text("s.old"));
    EXPECT_EQ(0640U, modeOf(tree("s")));
    EXPECT_TRUE(std::filesystem::is_symlink(tree("link")));
    // A failed file stays unchanged. With -k, a file that is already valid stays unchanged too.
    tree.file("bad", kBroken);
    expectRun(tree, "$S -kvi bad s", 1,
              kCutOff +
                  "s: already UTF-8\n2 files: 0 converted, 1 unchanged, 1 failed; characters "
                  "replaced: 0\n");
    EXPECT_EQ(kBroken, tree.text("bad"));
    // Nearly any text is valid UTF-16, so -k requires a byte-order mark.
    tree.file("s", kShiftJIS + "b");
    expectRun(tree, "$S --in-place=.b --bom=add -kt UTF-16LE s", 0, "");
    EXPECT_EQ(kShiftJIS + "b", tree.text("s.b"));
    EXPECT_EQ(std::string("\xFF\xFE\x61\0B0\n\0b\0", 10), tree.text("s"));
    expectRun(tree, "$S -vi --bom=add -kt UTF-16LE s", 0, "s: already UTF-16LE\n");
    EXPECT_EQ("./bad ./link ./s ./s.b ./s.old ", namesIn(tree, "."));
}

TEST(QblconvFilesTest, NeverOverwritesAKeptOriginal) {
    TempTree tree;
    const auto expectKept = [&](const std::string& arguments, int status, const std::string& said) {
        tree.file("t/s", kShiftJIS);
        tree.file("t/s.o", kShiftJIS + "b");
        expectRun(tree, arguments, status, said);
        EXPECT_EQ(kShiftJIS, tree.text("t/s")) << arguments;
        EXPECT_EQ(kShiftJIS + "b", tree.text("t/s.o")) << arguments;
        EXPECT_EQ("./s ./s.o ", namesIn(tree, "t")) << arguments;
    };
    tree.dir("t");
    expectKept("$S -i=.o t/s t/s.o", 2,
               "qblconv: t/s and t/s.o would both be written to t/s.o; convert them separately\n");
    const std::string said =
        "t/s: not converted, because the original cannot be kept as t/s.o: File exists\n";
    expectKept("$S -i=.o t/s", 1, said);
    expectKept("$S -i=.o -r t", 1, said);
    // The name for the original must not be a directory. It may be a second name of the input that
    // an interrupted run has left.
    tree.dir("s.d");
    tree.file("s", kShiftJIS);
    EXPECT_EQ(1, runTool(tree, "$S -i=.d s").status);
    std::filesystem::create_hard_link(tree("s"), tree("s.o"));
    expectRun(tree, "$S -vi=.o s", 0, "s: converted from Shift_JIS\n");
    EXPECT_EQ(kShiftJIS, tree.text("s.o"));
    EXPECT_EQ("./s ./s.d ./s.o ./t ./t/s ./t/s.o ", namesIn(tree, "."));
}

TEST(QblconvFilesTest, KeepsAFileThatReplacedTheInput) {
    TempTree tree;
    const auto isChangedBy = [&](const std::function<void()>& change) {
        conv::Item item = {tree.file("s"), "s", conv::Item::Origin::kNamedInPlace, nullptr, "s", 0};
        const auto place = std::make_shared<conv::Place>();
        EXPECT_TRUE(place->directory.open(tree.root()));
        item.place = place;
        conv::Input input;
        EXPECT_TRUE(input.open(item, true));
        change();
        return input.isAnother();
    };
    EXPECT_FALSE(isChangedBy([&] { std::filesystem::create_hard_link(tree("s"), tree("other")); }));
    EXPECT_TRUE(isChangedBy([&] { chmod(tree("s").c_str(), 0600); }));
    EXPECT_TRUE(isChangedBy([&] { unlink(tree("s").c_str()); }));
    EXPECT_TRUE(isChangedBy([&] { std::filesystem::rename(tree.file("new"), tree("s")); }));
    // The first input is also the output. It is replaced while qblconv waits for the second input.
    ASSERT_EQ(0, mkfifo(tree("pipe").c_str(), 0600));
    Child child = start({"-f", "Shift_JIS", "-o", tree("s"), tree("s"), tree("pipe")});
    const int writer = open(tree("pipe").c_str(), O_WRONLY);
    std::filesystem::rename(tree.file("new", "new"), tree("s"));
    close(writer);
    EXPECT_EQ(1, child.wait());
    EXPECT_EQ("new", tree.text("s"));
}

TEST(QblconvFilesTest, InPlaceRequiresRegularUnlockedFiles) {
    TempTree tree;
    const int file = open(tree.file("s", kShiftJIS).c_str(), O_RDWR);
    ASSERT_EQ(1, M_LockFile(file, 0, 0));
    const std::string locked =
        "s: locked by process " + std::to_string(getpid()) + "; --lock=wait waits for it\n";
    expectRun(tree, "$S -i s", 1, locked);
    expectRun(tree, "$S -n --lock=try s", 1, locked);
    EXPECT_EQ(kShiftJIS, tree.text("s"));
    Child waiting = start({"-f", "Shift_JIS", "-i", "--lock=wait", tree("s")});
    // When qblconv gets the lock, it converts the file that has the name at that time.
    tree.file("new", "\x82\xA2");
    std::filesystem::rename(tree("new"), tree("s"));
    ASSERT_EQ(1, M_UnLockFile(file));
    EXPECT_EQ(0, waiting.wait());
    EXPECT_EQ("\xE3\x81\x84", tree.text("s"));
    close(file);
    const int leased = open(tree("s").c_str(), O_RDONLY);
    ASSERT_EQ(0, fcntl(leased, F_SETSIG, SIGURG));
    ASSERT_EQ(0, fcntl(leased, F_SETLEASE, F_RDLCK));
    expectRun(tree, "$S -i s", 1, "s: another program holds a lease on it; try again\n");
    close(leased);
    ASSERT_EQ(0, mkfifo(tree("pipe").c_str(), 0600));
    expectRun(tree, "$S -i pipe --lock=none", 1, "pipe: not a regular file\n");
    tree.file("s", kShiftJIS);
    expectRun(tree, "$S -n pipe -v & cat s >pipe; wait", 0, "pipe: valid Shift_JIS\n");
    expectRun(tree, "$S -vir .", 0, "./s: converted from Shift_JIS\n");
}

TEST(QblconvFilesTest, StaysInTheTreeDespiteSwappedLinks) {
    TempTree tree;
    for (const char* directory : {"in/sub", "elsewhere"}) tree.dir(directory);
    for (const char* file : {"in/sub/a", "in/sub/b", "elsewhere/b", "secret"})
        tree.file(file, kShiftJIS);
    const auto runLocked = [&](const std::vector<std::string>& arguments, const char* file,
                               const std::function<void()>& attack) {
        const int lock = open(tree(file).c_str(), O_RDWR | O_CLOEXEC);
        EXPECT_EQ(1, M_LockFile(lock, 0, 0));
        std::vector<std::string> words = {"-f", "Shift_JIS", "--lock=wait"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        Child child = start(words);
        EXPECT_TRUE(hasOpened(child, tree(file)));
        attack();
        close(lock);
        return child.wait();
    };
    // While qblconv processes a directory, a link takes its place.
    EXPECT_EQ(0, runLocked({"-r", "-i", tree("in")}, "in/sub/a", [&] {
                  std::filesystem::rename(tree("in/sub"), tree("moved"));
                  std::filesystem::create_symlink("../elsewhere", tree("in/sub"));
              }));
    EXPECT_EQ(kShiftJIS, tree.text("elsewhere/b"));
    EXPECT_EQ(kUTF8, tree.text("moved/a")) << "the file was already open";
    EXPECT_EQ(kUTF8, tree.text("moved/b"));
    tree.file("s", kShiftJIS);
    EXPECT_EQ(1, runLocked({"-i", tree("s")}, "s", [&] {
                  unlink(tree("s").c_str());
                  std::filesystem::create_symlink("secret", tree("s"));
              }));
    EXPECT_EQ(kShiftJIS, tree.text("secret"));
    // Links in the output tree are not followed; links in the input tree are skipped.
    tree.dir("out");
    for (const char* file : {"moved/a", "moved/b"}) tree.file(file, kShiftJIS);
    std::filesystem::create_symlink("../elsewhere", tree("out/moved"));
    expectRun(tree, "$S -r -d out moved", 1,
              "out/moved/a: cannot be written: Not a directory\n"
              "out/moved/b: cannot be written: Not a directory\n"
              "2 files: 0 converted, 0 unchanged, 2 failed; characters replaced: 0\n");
    EXPECT_EQ("./b ", namesIn(tree, "elsewhere"));
    std::filesystem::create_symlink("nowhere", tree("elsewhere/broken"));
    std::filesystem::create_symlink("../secret", tree("elsewhere/link"));
    for (const char* mode : {"-n", "-d new", "-i"})
        expectRun(tree, std::string("$S -vr elsewhere -m '*k*' ") + mode, 0,
                  "elsewhere/broken: warning: broken symbolic link, skipped\n"
                  "elsewhere/link: symbolic link, skipped\n");
}

TEST(QblconvFilesTest, LateAppendsAreNotLost) {
    TempTree tree;
    const std::string before = times(3000, kShiftJIS), after = times(3000, kUTF8);
    const auto convert = [&] {
        tree.file("s", before);
        return start({"-f", "Shift_JIS", "-i", "--lock=none", tree("s")});
    };
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_EQ(0, convert().wait());
    const std::chrono::duration<double> whole = std::chrono::steady_clock::now() - begin;
    std::mt19937 random(2);
    std::uniform_real_distribution<double> part(0, 1.2);
    for (int i = repeats("QBL_TEST_APPENDS", 60); i > 0; --i) {
        Child child = convert();
        std::this_thread::sleep_for(whole * part(random));
        const int file = open(tree("s").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
        EXPECT_EQ(5, write(file, "late\n", 5));
        const int status = child.wait();
        close(file);
        const bool isKept = std::filesystem::exists(tree("s.changed1"));
        EXPECT_TRUE(status == 1 || (status == 0 && !isKept)) << i;
        // The text was appended to the old version after the replacement, and qblconv kept the old
        // version; or qblconv noticed it before the replacement, or the new version has it.
        if (isKept) {
            EXPECT_EQ(before + "late\n", tree.text("s.changed1")) << i;
            unlink(tree("s.changed1").c_str());
        }
        const std::string text = status == 0 || isKept ? after : before;
        EXPECT_EQ(isKept ? text : text + "late\n", tree.text("s")) << i;
    }
    EXPECT_EQ("./s ", namesIn(tree, "."));
}

TEST(QblconvFilesTest, WritesOneOutputPerInputAndReportsInOrder) {
    TempTree tree;
    std::string expected;
    tree.dir("in/deep/.git");
    for (int i = 0; i < 300; ++i) {
        std::string name = std::to_string(1000 + i);
        if (i >= 150) name.insert(0, "deep/");
        const bool isBroken = i % 7 == 0;
        // Some files take longer than the files after them.
        const int lines = i % 5 == 0 ? 20000 : 1;
        tree.file("in/" + name + ".txt", times(lines, kShiftJIS) + (isBroken ? kBroken : ""));
        if (!isBroken) continue;
        expected += "in/" + name + ".txt:" + std::to_string(lines + 2) + ":1: byte " +
                    std::to_string(4 * lines + 2) + kCutOff.substr(kCutOff.find(": 82"));
    }
    expected += "300 files: 257 converted, 0 unchanged, 43 failed; characters replaced: 0\n";
    for (const char* other : {"in/x.bin", "in/.hidden.txt", "in/deep/.git/x.txt"})
        tree.file(other, kBroken);
    std::filesystem::create_directory_symlink("..", tree("in/deep/loop"));
    for (const char* jobs : {"1", "2", "9"})
        expectRun(tree, std::string("$S -m '*.txt' -rd in/out in -j ") + jobs, 1, expected);
    EXPECT_EQ(kUTF8, tree.text("in/out/in/deep/1151.txt"));
    EXPECT_EQ("257\n", runTool(tree, "find in/out -type f | wc -l").output);
}

TEST(QblconvFilesTest, OutputNeverDestroysItsInput) {
    TempTree tree;
    tree.file("s", kShiftJIS);
    tree.file("bad", kBroken);
    expectRun(tree, "$S s bad -o s", 1, kCutOff + "s: not written, because an input failed\n");
    EXPECT_EQ(kShiftJIS, tree.text("s"));
    expectRun(tree, "$S s >>s", 1, "s: is also the output; choose another output\n");
    // qblconv waits for a reader of a pipe; a signal ends the wait.
    expectRun(tree, "mkfifo q; (sleep 0.1; cat q) & $S s -o q; wait", 0, kUTF8);
    expectRun(tree, "timeout 0.2 $S s -o q; echo $?; rm q", 0, "124\n");
    expectRun(tree, "$S - <s >>s", 1, "-: is also the output; choose another output\n");
    expectRun(tree, "$S s no-such/.. -q >/dev/full", 2,
              "no-such/..: cannot be read: No such file or directory\n");
    expectRun(tree, "$S -ir s . -v", 1,
              "s: converted from Shift_JIS\n./" + kCutOff +
                  "2 files: 1 converted, 0 unchanged, 1 failed; characters replaced: 0\n");
    expectRun(tree, "$S bad -d s; $S -d /proc/no s", 1,
              "s/bad: cannot be written: Not a directory\ns:1:3: byte 3: 82 is not Shift_JIS\n");
    EXPECT_EQ("./bad ./s ", namesIn(tree, "."));
    // If the standard output is a file, its earlier content is kept too.
    tree.file("s", kShiftJIS);
    expectRun(tree, "$S s >f; $Q -f sjis s -o /dev/stdout >>f; cat f", 0, kUTF8 + kUTF8);
    expectRun(tree, "$S -v -n s 2>/dev/full", 1, "");
}

TEST(QblconvFilesTest, OutputsKeepThePermissionsOfTheirInputs) {
    TempTree tree;
    const std::string directory = tree.dir("in/private");
    ASSERT_EQ(0, chmod(tree.file("in/private/s", kShiftJIS).c_str(), 0400));
    ASSERT_EQ(0, chmod(directory.c_str(), 0700));
    expectRun(tree, "$S -rd out in", 0, "");
    EXPECT_EQ(0700U, modeOf(tree("out/in/private")));
    EXPECT_EQ(0400U, modeOf(tree("out/in/private/s")));
}

TEST(QblconvFilesTest, LeavesTheOldOrTheNewFileIfKilled) {
    TempTree tree;
    const std::string before = times(100000, kShiftJIS), after = times(100000, kUTF8);
    const std::string file = tree("s");
    const auto convert = [&] { return start({"-f", "Shift_JIS", "-i=.old", file}); };
    tree.file("s", before);
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_EQ(0, convert().wait());
    const std::chrono::duration<double> whole = std::chrono::steady_clock::now() - begin;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> part(0, 1.2);
    for (int i = repeats("QBL_TEST_KILLS", 200); i > 0; --i) {
        tree.file("s", before);
        unlink(tree("s.old").c_str());
        Child killed = convert();
        std::this_thread::sleep_for(whole * part(random));
        killed.kill(SIGKILL);
        const int status = killed.wait();
        EXPECT_TRUE(status == 0 || status == -SIGKILL) << status;
        const std::string text = tree.text("s");
        ASSERT_TRUE(text == before || text == after) << i << ": " << text.size() << " bytes";
        // When the new version has the name, the original already exists under its second name.
        ASSERT_TRUE(text == before || tree.text("s.old") == before) << i;
        runTool(tree, "rm -f .QBLFm*");
    }
    unlink(tree("s.old").c_str());
    EXPECT_EQ("./s ", namesIn(tree, "."));
}

TEST(QblconvFilesTest, RemovesUnfinishedFilesIfInterrupted) {
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP}) {
        TempTree tree;
        const std::string pipe = tree("pipe");
        ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
        Child child = start({"-f", "Shift_JIS", "-d", tree("out"), pipe});
        const int writer = open(pipe.c_str(), O_WRONLY);
        const std::string text = times(100000, kShiftJIS);
        ASSERT_EQ(static_cast<ssize_t>(text.size()), write(writer, text.data(), text.size()));
        // The text exceeds the pipe's buffer, so qblconv has read some of it and created a file.
        child.kill(signal);
        EXPECT_EQ(-signal, child.wait());
        close(writer);
        EXPECT_EQ("", namesIn(tree, "out"));
    }
}

TEST(QblconvFilesTest, ReportsAFileOverTheSizeLimitAndLeavesNothing) {
    TempTree tree;
    const std::string text = times(2000, kShiftJIS);
    tree.file("s", text);
    expectRun(tree, "$S -n s; ulimit -f 4; for o in '-d out' -i '-o o s'; do $S $o s; done", 1,
              "out/s: cannot be written: File too large\ns: cannot be written: File too large\n"
              "o: cannot be written: File too large\n");
    EXPECT_EQ("./out ./s ", namesIn(tree, "."));
    EXPECT_EQ(text, tree.text("s"));
}

TEST(QblconvFilesTest, ReportsAFullDiskOnce) {
    TempTree tree;
    tree.file("s", "s\n");
    tree.file("report", "<Message a=\"b\" ></Message>\n");
    const std::string reason = ": No space left on device\n";
    const std::string refused = "the standard output: cannot be written" + reason;
    const std::pair<std::string, std::string> table[] = {
        {"$Q s s >/dev/full", refused},
        {"$Q -o /dev/full s s", "/dev/full: cannot be written" + reason},
        {"$Q -l >/dev/full", refused},
        {"$Q -nX s >/dev/full", refused},
        {"$M -s report >/dev/full", refused},
        {"$M -w ./x >/dev/full",
         "./x: no catalogue found for en; none of the files listed exists\n" + refused},
    };
    for (const auto& [command, said] : table) expectRun(tree, command, 1, said);
    EXPECT_EQ("", runTool(tree, "$Q -l | :").output) << "no error if the reader has gone";
}

TEST(QblconvFilesTest, DoesNotWaitIfInterrupted) {
    TempTree tree;
    const int file = open(tree.file("s", kShiftJIS).c_str(), O_RDWR);
    ASSERT_EQ(1, M_LockFile(file, 0, 0));
    for (const char* pipe : {"one", "two"}) ASSERT_EQ(0, mkfifo(tree(pipe).c_str(), 0600));
    Child locked = start({"--lock=wait", "-n", tree("one"), tree("s")});
    Child reading = start({"-j2", "-n", tree("one"), tree("two")});
    // When the pipes are open, both processes have started.
    const int one = open(tree("one").c_str(), O_WRONLY), two = open(tree("two").c_str(), O_WRONLY);
    for (Child* child : {&locked, &reading}) {
        child->kill(SIGTERM);
        EXPECT_EQ(-SIGTERM, child->wait());
    }
    for (const int each : {file, one, two}) close(each);
}
