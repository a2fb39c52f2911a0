#include <fcntl.h>
#include <unistd.h>

#include <vector>

#include "tests/tools/RunTool.hpp"

TEST(CleanTest, RemovesOnlyUnusedTemporaryFiles) {
    TempTree tree;
    const pid_t process = fork();
    if (process == 0) _exit(0);
    waitpid(process, nullptr, 0);
    const std::string dead = std::to_string(process), live = std::to_string(getpid());
    for (const char* const directory : {"d", "d/.hidden", "other"}) tree.dir(directory);
    const std::vector<std::string> removed = {".QBLFm" + dead + ".1", ".qblconv" + dead + ".22",
                                              "d/.QBLFm" + dead + ".3"};
    for (const std::string& name : removed) tree.file(name);
    const std::string held = ".qblconv" + dead + ".4", running = ".QBLFm" + live + ".1";
    const std::string link = ".QBLFm" + dead + ".5", toDirectory = ".QBLFm" + dead + ".6";
    std::vector<std::string> left = {held, running, "other/.QBLFm" + dead + ".1",
                                     "d/.hidden/.QBLFm" + dead + ".1"};
    for (const char* const other :
         {".QBLFm@", ".QBLFm@.", ".QBLFm@.1.orig", ".QBLFm.1", ".QBLFm@.1a", ".QBLFm0@.1",
          ".QBLFm0.1", ".QBLFm-1.1", ".QBLFm99999999999.1", ".QBLFm@.-1", ".QBLFm@.01", "QBLFm@.1",
          ".qblconv@.1 ", ".qblfm@.1", ".qblconvmsgs"}) {
        std::string name = other;
        if (const std::size_t at = name.find('@'); at != name.npos) name.replace(at, 1, dead);
        left.push_back(name);
    }
    for (const std::string& name : left) tree.file(name);
    tree.dir(".QBLFm" + dead + ".7");
    std::filesystem::create_symlink("other/.QBLFm" + dead + ".1", tree(link));
    std::filesystem::create_directory_symlink("other", tree(toDirectory));
    std::filesystem::create_directory_symlink("other", tree("d/link"));
    left.insert(left.end(), {link, toDirectory, ".QBLFm" + dead + ".7"});
    const int file = open(tree(held).c_str(), O_RDONLY | O_CLOEXEC);

    // Sorted by message, because directory order depends on the process identifiers.
    EXPECT_EQ("./" + held + ": kept, because a program has it open\n./" + running +
                  ": kept, because process " + live + " is running\n./" + link +
                  ": not a regular file\n./" + removed[0] + ": removed\n./" + removed[1] +
                  ": removed\n",
              runTool(tree, "$Q --clean -v . 2>&1 | LC_ALL=C sort -t: -k2").output);
    EXPECT_TRUE(std::filesystem::exists(tree(removed[2]))) << "-r is not given";
    EXPECT_EQ("", runTool(tree, "$Q --clean -r d").output);
    for (const std::string& name : removed) EXPECT_FALSE(std::filesystem::exists(tree(name)));
    for (const std::string& name : left)
        EXPECT_TRUE(std::filesystem::exists(std::filesystem::symlink_status(tree(name)))) << name;
    close(file);
    EXPECT_EQ(0, runTool(tree, "$Q --clean .").status);
    EXPECT_FALSE(std::filesystem::exists(tree(held)));
}
