// Lists a tree in one pass, and reads the lines of a file.
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "QBLCore/Exceptions/QBLThrowable.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/QBLFmEntries.hpp"
#include "QBLCore/FileManagement/QBLFmFile.hpp"
#include "QBLCore/FileManagement/QBLFmLines.hpp"

namespace {

void makeTree(const std::string& root) {
    QBLFmFile file;
    QBLFmDir::createDir((root + "/in").c_str());
    if (file.open((root + "/in/data").c_str(), QBLFmFile::create, 0))
        file.write("apple\npear\nx\xFF\n", 14);
    mkfifo((root + "/queue").c_str(), 0600);
}

/// Returns one line for each entry, sorted.
std::vector<std::string> list(const std::string& root) {
    std::vector<std::string> lines;
    for (const QBLFmEntry& entry : QBLFmEntries(root, QBLFmEntries::kRecursive)) {
        std::string line = entry.getPath().substr(root.size() + 1);
        if (entry.isFile()) line += ": " + std::to_string(entry.getSize()) + " bytes";
        if (entry.getType() == QBLFmEntry::kFifo) line += ": a FIFO, not a file";
        if (entry.getErrorNumber() != 0) line += ": cannot be read";
        lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

}  // namespace

int main() {
    std::string root;
    if (!QBLFmDir::createTempDir(nullptr, "page", root)) return 1;
    makeTree(root);
    for (const std::string& line : list(root)) std::printf("%s\n", line.c_str());
    try {
        QBLFmLines lines(root + "/in/data", "Shift_JIS");
        for (const std::string_view line : lines)
            std::printf("%d: %s\n", int(lines.getLineNumber()), std::string(line).c_str());
    } catch (QBLThrowable& error) {
        std::printf("%s\n", std::string(error.getMessage()).erase(12, root.size() + 1).c_str());
    }
    if (!QBLFmDir::removeDir(root.c_str())) return 1;
    try {
        list(root);
    } catch (QBLThrowable& error) {
        std::printf("error %ld\n", error.getErrorCode());
    }
}
