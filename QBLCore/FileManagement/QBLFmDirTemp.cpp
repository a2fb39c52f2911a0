#include <cstdlib>
#include <ctime>

#include "QBLCore/Exceptions/QBLAllocation.hpp"
#include "QBLCore/FileManagement/QBLFmDir.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSetting.hpp"
#include "QBLCore/FileManagement/internal/QBLFmSystem.hpp"

namespace {

constexpr int kAttempts = 500;
const char kPrefix[] = "QBLFm";
const char* const kVariables[] = {"TMP", "tmp", "TEMP", "temp"};

struct TempDir : QBLFmSetting {};

/// The first variable that is set; the next ones do not stand in for one that is of no use.
const char* tempVariable() {
    for (const char* name : kVariables)
        if (const char* value = std::getenv(name)) return value;
    return nullptr;
}

/// Tries names until one could be made, which nothing but its making can tell.
bool createTemp(const char* basePath, const char* prefix, std::string& result, const char* suffix,
                bool (*make)(const char*)) {
    std::string path;
    if (basePath == nullptr) {
        if (!QBLFmDir::getTempPath(path)) return false;
    } else if (QBLFmDir::exists(basePath, kQblWritableDir)) {
        path = basePath;
    } else {
        return false;
    }
    QBLFmDir::joinPath(path, prefix != nullptr && *prefix != '\0' ? prefix : kPrefix);
    path += std::to_string(static_cast<long long>(std::time(nullptr)));
    const std::size_t stem = path.size();
    bool made = false;
    for (int counter = 0; counter < kAttempts && !made; ++counter) {
        path.resize(stem);
        path += std::to_string(counter);
        if (suffix != nullptr) path += suffix;
        made = make(path.c_str());
    }
    result.swap(path);
    return made;
}

bool makeDir(const char* path) { return mkdir(path, 0777) == 0; }

bool makeFile(const char* path) {
    const int fd = open64(path, O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
    return fd >= 0 && ::close(fd) == 0;
}

}  // namespace

void QBLFmDir::setTempPath(const char* path) {
    QBL_ALLOC_TRY
    qblImmortal<TempDir>().set(path);
    QBL_ALLOC_CATCH
}

bool QBLFmDir::getTempPath(std::string& result) {
    return qblOrNoMemory([&result] {
        std::optional<std::string> set = qblImmortal<TempDir>().get();
        result.clear();
        if (set) {
            result.swap(*set);
            return true;
        }
        for (const char* dir : {tempVariable(), "/tmp", "."}) {
            if (dir == nullptr || !exists(dir, kQblWritableDir)) continue;
            result = dir;
            return true;
        }
        return false;
    });
}

bool QBLFmDir::createTempDir(const char* basePath, const char* prefix, std::string& result,
                             const char* suffix) {
    return qblOrNoMemory([&] { return createTemp(basePath, prefix, result, suffix, &makeDir); });
}

bool QBLFmDir::createTempDir(const char* basePath, const char* prefix, std::string& result) {
    return createTempDir(basePath, prefix, result, nullptr);
}

bool QBLFmDir::createTempFile(const char* basePath, const char* prefix, std::string& result,
                              const char* suffix) {
    return qblOrNoMemory([&] { return createTemp(basePath, prefix, result, suffix, &makeFile); });
}

bool QBLFmDir::createTempFile(const char* basePath, const char* prefix, std::string& result) {
    return createTempFile(basePath, prefix, result, nullptr);
}
