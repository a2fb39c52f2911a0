#include "QBLCore/FileManagement/QBLFmDir.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <list>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/support/Bench.hpp"
#include "bench/support/TempDir.hpp"

namespace {

constexpr int kEntries = 10000;
constexpr int kDirs = 100;
constexpr int kTrees = 2;  // only two, because creating a tree takes longer than removing it

void makeDir(const std::string& path) {
    if (mkdir(path.c_str(), 0777) != 0) throw std::runtime_error(path);
}

void makeFiles(const std::string& dir, int count) {
    const char content[100] = "";
    for (int i = 0; i < count; ++i) {
        const std::string path = dir + "/file" + std::to_string(i);
        const int fd = open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY, 0666);
        if (write(fd, content, sizeof content) < 0) throw std::runtime_error(path);
        close(fd);
    }
}

void makeTree(const std::string& root, int dirs, int filesInEach) {
    makeDir(root);
    for (int i = 0; i < dirs; ++i) {
        const std::string dir = root + "/dir" + std::to_string(i);
        makeDir(dir);
        makeFiles(dir, filesInEach);
    }
}

struct OurDir {
    typedef std::list<std::string> Names;

    static Names list(const std::string& path) {
        Names names;
        QBLFmDir::readDir(path.c_str(), &names, nullptr, nullptr, nullptr);
        return names;
    }
    static bool remove(const std::string& path) { return QBLFmDir::removeDir(path.c_str()); }
};

struct PeerDir {
    typedef std::vector<std::string> Names;

    static Names list(const std::string& path) {
        Names names;
        DIR* const dir = opendir(path.c_str());
        if (dir == nullptr) return names;
        while (const dirent* entry = readdir(dir))
            if (entry->d_type != DT_DIR) names.emplace_back(entry->d_name);
        closedir(dir);
        std::sort(names.begin(), names.end());
        return names;
    }
    static bool remove(const std::string& path) {
        std::error_code error;
        std::filesystem::remove_all(path, error);
        return !error;
    }
};

template <class Dir>
void list(benchmark::State& state) {
    static const TempDir& dir = []() -> const TempDir& {
        static const TempDir made;
        makeFiles(made.path(), kEntries);
        return made;
    }();
    for (auto _ : state)
        if (Dir::list(dir.path()).size() != kEntries) return state.SkipWithError("not all names");
}

template <class Dir>
void remove(benchmark::State& state) {
    const TempDir dir;
    const std::string tree = dir.path("tree");
    for (auto _ : state) {
        state.PauseTiming();
        makeTree(tree, kDirs, kEntries / kDirs);
        state.ResumeTiming();
        if (!Dir::remove(tree)) return state.SkipWithError("not removed");
    }
}

const OutputCheck checkLists("QBLFmDir::readDir", [] {
    const TempDir dir;
    makeTree(dir.path("tree"), 1, 1);
    makeFiles(dir.path(), 200);
    const OurDir::Names ours = OurDir::list(dir.path());
    const PeerDir::Names theirs = PeerDir::list(dir.path());
    return theirs.size() == 200 &&
           std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end());
});

template <class Dir>
bool removesTree() {
    const TempDir dir;
    const std::string tree = dir.path("tree");
    makeTree(tree, 2, 2);
    return Dir::remove(tree) && !std::filesystem::exists(tree);
}

const OutputCheck checkRemoval("QBLFmDir::removeDir",
                               [] { return removesTree<OurDir>() && removesTree<PeerDir>(); });

BENCHMARK_TEMPLATE(list, OurDir)->Name("BM_QBLFmDir_readDir");
BENCHMARK_TEMPLATE(list, PeerDir)->Name("BM_Readdir_sorted");
BENCHMARK_TEMPLATE(remove, OurDir)->Name("BM_QBLFmDir_removeDir")->Iterations(kTrees);
BENCHMARK_TEMPLATE(remove, PeerDir)->Name("BM_StdFilesystem_removeAll")->Iterations(kTrees);

}  // namespace
