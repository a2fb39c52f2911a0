// turns: two processes increment one number in a file. A file lock gives each process exclusive
// access while it reads and writes. Exit status: 0 if no increment was lost, else 1.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "QBLCore/Exceptions/QBLSystemError.hpp"
#include "QBLCore/Exceptions/QBLThrow.hpp"
#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/FileLock/QBLFileLockRW.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/Threads/QBLThread.hpp"
#include "QBLCore/Threads/QBLThreadGuard.hpp"
#include "QBLCore/Threads/QBLThreadRWGuard.hpp"

namespace {

constexpr int kTurns = 200;

[[noreturn]] void throwLastError(QBLFmFile& file, const char* operation) {
    const std::string text = std::string(operation) + ": " + file.getLastErrorMessage();
    QBL_THROW(QBLSystemError(file.getLastErrorNumber(), text.c_str()));
}

int read(QBLFmFile& file) {
    char text[16] = {};
    if (file.seek(0, QBLFmFile::begin) < 0 || file.read(text, sizeof text - 1) < 0)
        throwLastError(file, "read");
    return std::atoi(text);
}

void write(QBLFmFile& file, int number) {
    const std::string text = std::to_string(number);
    const long size = static_cast<long>(text.size());
    if (file.seek(0, QBLFmFile::begin) < 0 || file.write(text.data(), text.size()) != size)
        throwLastError(file, "write");
}

/// Each process opens the file itself, because a lock belongs to a process.
void takeTurns(const std::string& path) {
    QBLFmFile file;
    if (!file.open(path.c_str(), QBLFmFile::existing, 0)) throwLastError(file, "open");
    QBLFileLockRW lock(file);
    int changes = 0, last = 0;
    for (int i = 0; i < kTurns; ++i) {
        {
            QBLThreadGuard guard(lock);
            const int number = read(file);
            changes += number != last;  // the other process has written
            write(file, last = number + 1);
        }
        QBLThread::sleep(1);  // lets the other process take its turn
    }
    std::printf("process %d: %d turns, interrupted by the other process %d times\n",
                static_cast<int>(getpid()), kTurns, changes);
}

int result(const std::string& path) {
    QBLFmFile file;
    if (!file.open(path.c_str(), QBLFmFile::existing, 1)) throwLastError(file, "open");
    QBLFileLockRW lock(file);
    QBLThreadRWGuard guard(lock, 0);
    return read(file);
}

int turns(const std::string& path) {
    std::fflush(stdout);
    const pid_t other = fork();
    takeTurns(path);
    if (other == 0) return 0;
    int status = 0;
    waitpid(other, &status, 0);
    const int number = result(path);
    std::printf("two processes counted to %d in %s\n", number, path.c_str());
    return status == 0 && number == 2 * kTurns ? 0 : 1;
}

}  // namespace

int main() {
    try {
        std::string path;
        if (!QBLFmDir::createTempFile(nullptr, "turns", path))
            QBL_THROW(QBLSystemError(0, "no file"));
        const pid_t self = getpid();
        const int status = turns(path);
        if (getpid() == self) QBLFmDir::removeFile(path.c_str());
        return status;
    } catch (QBLThrowable& e) {
        std::fprintf(stderr, "turns: %s\n", e.toString());
    }
    return 1;
}
