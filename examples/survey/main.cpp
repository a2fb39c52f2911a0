// survey [-a] PATH...: counts the lines, words and bytes of files and of all files below
// directories, with one thread per processor, and shows how long their lines are.
// -a lists all files in the given order instead of the largest files. Files that cannot be read
// are reported in XML. Exit status: 0 if all were read, 1 if some were not, 2 for a usage error.
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <deque>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "FileFigures.hpp"
#include "QBLCore/Exceptions/QBLDeferredThrowable.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/Frame/QBLCore.h"
#include "QBLCore/ThreadPools/QBLThreadPoolFixed.hpp"
#include "QBLCore/Threads/QBLThreadRunnable.hpp"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLargest = 10;

/// Surveys one file on a worker and stores the result or the error.
class FileTask : public QBLThreadRunnable {
public:
    FileTask(std::string path, std::atomic<std::size_t>& done)
        : m_path(std::move(path)), m_done(done) {}

    void run() override {
        try {
            m_figures = surveyFile(m_path);
        } catch (QBLThrowable& e) {
            e.addBackTrace(QBL_HERE, "FileTask::run", "QBL_RETHROW");
            m_error.set(e);
            m_bFailed = true;
        }
        ++m_done;
    }

    // Only for the main thread, after the pool is destroyed.
    const std::string& path() const { return m_path; }
    const FileFigures& figures() const { return m_figures; }
    bool hasFailed() const { return m_bFailed; }
    void check() { m_error.check(QBL_HERE, "FileTask::check", "QBL_THROW"); }

private:
    std::string m_path;
    std::atomic<std::size_t>& m_done;
    FileFigures m_figures;
    QBLDeferredThrowable m_error;
    bool m_bFailed = false;
};

/// Adds a file, or all files below a directory, sorted by name. Hidden entries, symbolic links
/// and special files below a directory are skipped. A directory that cannot be listed is added
/// itself, so that reading it reports the error.
void addFiles(const fs::path& path, std::vector<std::string>& files) {
    std::error_code failed;
    if (!fs::is_directory(path, failed)) {
        files.push_back(path.string());
        return;
    }
    std::vector<fs::path> entries;
    for (fs::directory_iterator it(path, failed), end; !failed && it != end; it.increment(failed)) {
        const bool hidden = it->path().filename().native()[0] == '.';
        std::error_code unknown;
        const fs::file_type type = it->symlink_status(unknown).type();
        if (!hidden && (type == fs::file_type::regular || type == fs::file_type::directory))
            entries.push_back(it->path());
    }
    if (failed) files.push_back(path.string());
    std::sort(entries.begin(), entries.end());
    for (const fs::path& entry : entries) addFiles(entry, files);
}

void surveyAll(const std::vector<std::string>& files, std::deque<FileTask>& tasks) {
    const bool showProgress = isatty(STDERR_FILENO) != 0;
    std::atomic<std::size_t> done{0};
    {
        QBLThreadPoolFixed pool(std::max(1U, std::thread::hardware_concurrency()));
        for (const std::string& file : files) {
            tasks.emplace_back(file, done);
            pool.execute(&tasks.back(), QBLWaitForever);
            if (showProgress) std::fprintf(stderr, "\r%zu of %zu files", done.load(), files.size());
        }
    }  // the destructor of the pool waits for the tasks
    if (showProgress) std::fprintf(stderr, "\r\033[K");
}

void printRow(const FileFigures& f, const std::string& name) {
    std::printf("%8" PRIu64 " %8" PRIu64 " %10" PRIu64 " %8" PRIu64 " ", f.lines, f.words, f.bytes,
                f.longest);
    std::uint64_t all = 0;
    for (std::uint64_t n : f.byLength) all += n;
    for (std::uint64_t n : f.byLength)
        std::printf("%4" PRIu64 "%%", all != 0 ? (n * 100 + all / 2) / all : 0);
    std::printf("  %s\n", name.c_str());
}

void printTable(const std::deque<FileTask>& tasks, bool listAll) {
    std::vector<const FileTask*> rows;
    FileFigures total;
    for (const FileTask& task : tasks) {
        if (task.hasFailed()) continue;
        rows.push_back(&task);
        total += task.figures();
    }
    const std::size_t files = rows.size();
    if (!listAll) {
        std::stable_sort(rows.begin(), rows.end(), [](const FileTask* a, const FileTask* b) {
            return a->figures().bytes > b->figures().bytes;
        });
        rows.resize(std::min(rows.size(), kLargest));
        std::printf("The %zu largest of %zu files; lines by length in bytes:\n", rows.size(),
                    files);
    }
    std::printf("   lines    words      bytes  longest    0  -20  -40  -80 -120 more\n");
    for (const FileTask* row : rows) printRow(row->figures(), row->path());
    printRow(total, "total of " + std::to_string(files) + " files");
}

int reportErrors(std::deque<FileTask>& tasks) {
    int status = 0;
    for (FileTask& task : tasks) {
        try {
            task.check();
        } catch (QBLThrowable& e) {
            std::printf("%s\n", e.toString());
            status = 1;
        }
    }
    return status;
}

int survey(const std::vector<std::string>& paths, bool listAll) {
    std::vector<std::string> files;
    for (const std::string& path : paths) addFiles(path, files);
    std::deque<FileTask> tasks;
    surveyAll(files, tasks);
    printTable(tasks, listAll);
    return reportErrors(tasks);
}

}  // namespace

int main(int argc, char** argv) {
    const bool listAll = argc > 1 && std::strcmp(argv[1], "-a") == 0;
    const std::vector<std::string> paths(argv + (listAll ? 2 : 1), argv + argc);
    if (paths.empty()) {
        std::fprintf(stderr, "usage: survey [-a] PATH...\n");
        return 2;
    }
    if (qblCoreInitialize() != 0) {
        std::fprintf(stderr, "survey: the library does not start\n");
        return 1;
    }
    int status = 1;
    try {
        status = survey(paths, listAll);
    } catch (QBLThrowable& e) {
        std::fprintf(stderr, "survey: %s\n", e.toString());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "survey: %s\n", e.what());
    }
    qblCoreTerminate();
    return status;
}
