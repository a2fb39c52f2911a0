// Shows how a process loses a file lock, and how to keep one.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "QBLCore/FileLock/QBLFileLockRW.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/FileManagement/QBLFmReplaceStream.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadMutex.hpp"

namespace {

bool anotherProcessGets(const std::string& path) {
    std::fflush(stdout);  // or the child may print the buffered text again
    int status = 0;
    if (const pid_t child = fork(); child != 0)
        return waitpid(child, &status, 0) == child && WEXITSTATUS(status) == 1;
    QBLFmFile file;
    QBLFileLockRW lock(file);
    _exit(file.open(path.c_str(), QBLFmFile::existing, 0) ? lock.tryLock() : 2);
}

/// The recipe: one object per process, and a file that serves only as the lock.
struct Owner {
    QBLThreadMutex threads;
    QBLFmFile file;
    QBLFileLockRW processes{file};
    explicit Owner(const std::string& path) {
        static_cast<void>(file.open((path + ".lock").c_str(), QBLFmFile::create, 0));
    }
    bool replace(const std::string& path, const std::string& text) {
        const QBLThreadGuard first(threads), second(processes);
        QBLFmReplaceStream next(path.c_str());
        next << text;
        return next.commit();
    }
};

}  // namespace

int main() {
    std::string path;
    if (!QBLFmDir::createTempFile(nullptr, "page", path)) return 1;
    QBLFmFile file, second;
    if (!file.open(path.c_str(), QBLFmFile::existing, 0)) return 1;
    QBLFileLockRW lock(file), other(second);
    const QBLThreadGuard guard(lock);
    std::printf("another process gets it: %d\n", anotherProcessGets(path));
    if (second.open(path.c_str(), QBLFmFile::existing, 0))
        std::printf("another object of this process: %d\n", other.tryLock());
    second.close();
    std::printf("after its close, another process: %d\n", anotherProcessGets(path));
    std::printf("replaced: %d\n", Owner(path).replace(path, "new"));
    QBLFmDir::removeFile((path + ".lock").c_str());
    return QBLFmDir::removeFile(path.c_str()) ? 0 : 1;
}
